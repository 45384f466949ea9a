// SPDX-License-Identifier: MIT
#include "tools/Stream.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

constexpr std::size_t blockSize = 65536;

void closeEnd(int& descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

Stream::Stream()
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return;
    m_reading = ends[0];
    m_writing = ends[1];
}

Stream::~Stream()
{
    closeEnd(m_reading);
    closeEnd(m_writing);
}

void Stream::closeWriting()
{
    closeEnd(m_writing);
}

std::string Stream::read()
{
    std::string piece(blockSize, '\0');
    const ssize_t count = ::read(m_reading, piece.data(), piece.size());
    piece.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    m_isWhole = count == 0;
    if (count == 0 || (count < 0 && errno != EINTR))
        closeEnd(m_reading);
    return piece;
}

bool Stream::hasMore() const
{
    pollfd waiting = {m_reading, POLLIN, 0};
    return isOpen() && ::poll(&waiting, 1, 0) > 0;
}
