// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// The file that is read, opened once and never for writing. Nothing but a regular file is accepted: reading
/// a named pipe or a device could wait without an end.
class InputFile
{
public:
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// Why it is not open, in words; empty where it is.
    const std::string& error() const { return m_error; }

private:
    int m_descriptor = -1;
    std::string m_error;
};
