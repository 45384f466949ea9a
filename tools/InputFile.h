// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <sys/stat.h>

/// The input file, opened once and read-only. Only regular files are accepted: reading a named pipe or a
/// device could block forever.
class InputFile
{
public:
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// The size in bytes when the file was opened.
    off_t size() const { return m_atOpening.st_size; }

    /// Whether there is something other than a regular file at the path.
    bool isOtherKind() const { return m_isOtherKind; }

    /// The reason why it could not be opened; empty if it is open.
    const std::string& error() const { return m_error; }

    /// Whether size and modification time have not changed since the file was opened. Another file at its
    /// path is not a change: ffmpeg and ffprobe can open only this one.
    bool isUnchanged() const;

    /// Opens the file again by another path, for example after it was renamed. If another mount leads to this
    /// path, the descriptor of the first mount can become invalid, and the file rules allow ffmpeg to open
    /// the path only through the mount of the descriptor. False, and no change, if there is no file of the
    /// same size and modification time in seconds.
    bool reopen(const std::string& path);

    enum class ReadEnd { Whole, Failed, Stopped };

    /// Reads the file to its end and discards the data. Pages in the kernel's cache are not read from the
    /// disk again. Calls `mayContinue` after at most 1 MiB each; false stops. Sets errno on a failure.
    ReadEnd readToEnd(const std::function<bool()>& mayContinue) const;

private:
    int m_descriptor = -1;
    struct stat m_atOpening = {};
    bool m_isOtherKind = false;
    std::string m_error;
};
