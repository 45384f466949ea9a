// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>

namespace tarnwell::test
{

/// An unnamed file in memory that is open for reading and writing.
class MemoryFile
{
public:
    explicit MemoryFile(const std::string& bytes = {});
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int descriptor() const { return m_descriptor; }
    void writeAt(off_t offset, const std::string& bytes) const;
    std::string contents() const;

private:
    int m_descriptor;
};

} // namespace tarnwell::test
