// SPDX-License-Identifier: MIT
#include "tests/tools/MemoryFile.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

namespace tarnwell::test
{

MemoryFile::MemoryFile(const std::string& bytes)
    : m_descriptor(::memfd_create("test", MFD_CLOEXEC))
{
    writeAt(0, bytes);
}

MemoryFile::~MemoryFile()
{
    ::close(m_descriptor);
}

void MemoryFile::writeAt(off_t offset, const std::string& bytes) const
{
    EXPECT_EQ(::pwrite(m_descriptor, bytes.data(), bytes.size(), offset), static_cast<ssize_t>(bytes.size()));
}

std::string MemoryFile::contents() const
{
    std::string bytes(static_cast<std::size_t>(::lseek(m_descriptor, 0, SEEK_END)), '\0');
    EXPECT_EQ(::pread(m_descriptor, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    return bytes;
}

} // namespace tarnwell::test
