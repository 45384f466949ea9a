// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <sys/types.h>

/// Starts writing a growing file to the disk, in large pieces, before the final fsync, which then takes less
/// time. Ignores errors: fsync reports them.
class EarlyWriteback
{
public:
    /// Keeps the descriptor; the caller closes it.
    explicit EarlyWriteback(int file)
        : m_file(file)
    {
    }

    /// Starts the writeback of the bytes before the offset `end` if they are a large piece. Does not wait.
    void advanceTo(off_t end);

    /// The same for the present size of the file.
    void advanceToEnd();

    /// Blocks until all but the last `mostPending` bytes of the started writeback are on the disk.
    void waitForDisk();

    /// Blocks until the whole file is on the disk. Calls `mayContinue` after each 1 MiB; false stops it, and
    /// the result is false.
    bool finish(const std::function<bool()>& mayContinue);

    static constexpr off_t piece = off_t(8) << 20;
    static constexpr off_t mostPending = off_t(128) << 20;

    /// Interval, in milliseconds, of calls for a file that another process writes.
    static constexpr int interval = 50;

private:
    int m_file;
    off_t m_started = 0; // writeback has been started up to this offset
    off_t m_written = 0; // the file is on the disk up to this offset
};
