// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A pipe from a child, which gets the writing end. Both ends are closed on exec.
class Stream
{
public:
    Stream();
    ~Stream();
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    int writing() const { return m_writing; }
    /// To be called once the child has its end.
    void closeWriting();

    /// -1 where no pipe could be made and after the end.
    int reading() const { return m_reading; }
    bool isOpen() const { return m_reading >= 0; }

    /// One piece of what is there to read; waits for it. Nothing at the end, which closes the stream.
    std::string read();

    /// Whether there is something to read without a wait, be it the end.
    bool hasMore() const;

    /// Whether the end came after all that was written.
    bool isWhole() const { return m_isWhole; }

private:
    int m_reading = -1;
    int m_writing = -1;
    bool m_isWhole = false;
};
