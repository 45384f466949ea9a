// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

/// Has the kernel write a growing file to the disk in large pieces while it is written, so that the final
/// fsync has little left to do. Errors are ignored: fsync reports them.
class EarlyWriteback
{
public:
    /// Keeps the descriptor, which the caller closes.
    explicit EarlyWriteback(int file)
        : m_file(file)
    {
    }

    /// Starts writing back what has been written before the offset `end`, where that is a large piece, and
    /// does not wait for it.
    void advanceTo(off_t end);

    /// The same for the present size of the file.
    void advanceToEnd();

    /// Waits until no more than `mostPending` bytes before the last piece are still to be written to the
    /// disk. A cancel or the progress of a copy then never waits for more.
    void waitForDisk();

    static constexpr off_t piece = off_t(8) << 20;
    static constexpr off_t mostPending = off_t(128) << 20;

    /// How often, in milliseconds, a file that another process writes is looked at.
    static constexpr int interval = 50;

private:
    int m_file;
    off_t m_started = 0; // writeback of all before this offset has been started
    off_t m_written = 0; // all before this offset is on the disk
};
