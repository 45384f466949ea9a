// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

/// Has the system write out a growing file a large piece at a time, without waiting for it, so that less is
/// left to wait for when the whole file is brought to the disk. It promises nothing: where it fails, all of
/// it is left for then.
class EarlyWriteOut
{
public:
    explicit EarlyWriteOut(int file)
        : m_file(file)
    {
    }

    /// Begins with what has come since the last time, where that is a piece.
    void goOn();

    /// Milliseconds between two looks: what is copied from memory to memory grows by a few pieces meanwhile.
    static constexpr int interval = 10;

private:
    int m_file;
    off_t m_begun = 0; // up to here
};
