// SPDX-License-Identifier: MIT
#pragma once

#include "tests/fuzz/Verify.h"

#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace tarnwell::test
{

/// An anonymous file in memory, so that a fuzz target does not write to the disk for each input.
class MemoryFile
{
public:
    MemoryFile()
        : m_descriptor(::memfd_create("fuzz", MFD_CLOEXEC))
    {
        verify(m_descriptor >= 0, "memfd_create succeeds");
    }

    int descriptor() const { return m_descriptor; }

    /// Replaces the contents.
    void write(const std::string& bytes) const
    {
        verify(::ftruncate(m_descriptor, 0) == 0
                && ::pwrite(m_descriptor, bytes.data(), bytes.size(), 0)
                    == static_cast<ssize_t>(bytes.size()),
            "writing the memory file succeeds");
    }

    std::string contents() const
    {
        std::string bytes(static_cast<std::size_t>(::lseek(m_descriptor, 0, SEEK_END)), '\0');
        verify(::pread(m_descriptor, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
            "reading the memory file succeeds");
        return bytes;
    }

private:
    int m_descriptor; // open until the process ends
};

} // namespace tarnwell::test
