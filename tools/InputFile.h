// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <sys/stat.h>

/// The file that is read, opened once and never for writing. Nothing but a regular file is accepted: reading
/// a named pipe or a device could block without an end.
class InputFile
{
public:
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// Whether something other than a regular file is at the path.
    bool isOtherKind() const { return m_isOtherKind; }

    /// Why it is not open, in words; empty where it is.
    const std::string& error() const { return m_error; }

    /// Whether size and modification time are those at the time of opening. Another file at its path is no
    /// change: ffmpeg and ffprobe can open this one only.
    bool isUnchanged() const;

    enum class ReadEnd { Whole, Failed, Stopped };

    /// Reads the file to its end and drops the data. What the kernel has in memory is not read from the disk
    /// again. `mayContinue` is called after at most 1 MiB each; false stops. errno is set after a failure.
    ReadEnd readToEnd(const std::function<bool()>& mayContinue) const;

private:
    int m_descriptor = -1;
    struct stat m_atOpening = {};
    bool m_isOtherKind = false;
    std::string m_error;
};
