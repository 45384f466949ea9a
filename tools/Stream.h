// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A pipe from a child process, which inherits the write end. Both ends are close-on-exec.
class Stream
{
public:
    Stream();
    ~Stream();
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    int writing() const { return m_writing; }
    /// Closes the write end. Must be called after the child has started; otherwise the pipe never ends.
    void closeWriting();

    /// -1 if no pipe could be created, and after the end.
    int reading() const { return m_reading; }
    bool isOpen() const { return m_reading >= 0; }

    /// Waits for data and returns it, at most 64 KiB. Empty at the end, which closes the stream.
    std::string read();

    /// Whether a read returns data or the end without blocking.
    bool hasMore() const;

    /// Whether the stream was read to its end without an error.
    bool isWhole() const { return m_isWhole; }

private:
    int m_reading = -1;
    int m_writing = -1;
    bool m_isWhole = false;
};
