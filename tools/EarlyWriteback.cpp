// SPDX-License-Identifier: MIT
#include "tools/EarlyWriteback.h"

#include <fcntl.h>
#include <sys/stat.h>

void EarlyWriteback::advanceTo(off_t end)
{
    if (end - m_started < piece)
        return;
    ::sync_file_range(m_file, m_started, end - m_started, SYNC_FILE_RANGE_WRITE);
    m_started = end;
}

void EarlyWriteback::advanceToEnd()
{
    struct stat status = {};
    if (::fstat(m_file, &status) == 0)
        advanceTo(status.st_size);
}

void EarlyWriteback::waitForDisk()
{
    const off_t end = m_started - mostPending;
    if (end <= m_written)
        return;
    ::sync_file_range(m_file, m_written, end - m_written, SYNC_FILE_RANGE_WAIT_BEFORE);
    m_written = end;
}

bool EarlyWriteback::finish(const std::function<bool()>& mayContinue)
{
    constexpr off_t smallPiece = off_t(1) << 20;
    constexpr off_t toTheEnd = 0;
    struct stat status = {};
    if (::fstat(m_file, &status) != 0)
        return true;
    ::sync_file_range(m_file, m_started, toTheEnd, SYNC_FILE_RANGE_WRITE);
    m_started = status.st_size;
    for (; m_written < m_started; m_written += smallPiece) {
        ::sync_file_range(m_file, m_written, smallPiece, SYNC_FILE_RANGE_WAIT_BEFORE);
        if (!mayContinue())
            return false;
    }
    return true;
}
