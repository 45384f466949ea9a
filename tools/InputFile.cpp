// SPDX-License-Identifier: MIT
#include "tools/InputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace
{

constexpr std::size_t readSize = std::size_t(1) << 20U;

/// Ignores the change time (ctime): a rename, a new link or other permissions do not change the data.
bool hasSameData(const struct stat& left, const struct stat& right)
{
    return left.st_size == right.st_size && left.st_mtim.tv_sec == right.st_mtim.tv_sec
        && left.st_mtim.tv_nsec == right.st_mtim.tv_nsec;
}

} // namespace

InputFile::InputFile(const std::string& path)
    : m_descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
{
    if (m_descriptor < 0 || ::fstat(m_descriptor, &m_atOpening) != 0) {
        m_isOtherKind = errno == ENXIO; // ENXIO: a socket
        m_error = std::strerror(errno);
    } else if (!S_ISREG(m_atOpening.st_mode)) {
        m_isOtherKind = true;
        m_error = "not a file";
    } else {
        return;
    }
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

InputFile::~InputFile()
{
    if (isOpen())
        ::close(m_descriptor);
}

bool InputFile::isUnchanged() const
{
    struct stat now = {};
    return ::fstat(m_descriptor, &now) == 0 && hasSameData(now, m_atOpening);
}

bool InputFile::reopen(const std::string& path)
{
    InputFile other(path);
    // FUSE can return attributes from before a rename, and encfs cuts the modification time to seconds.
    struct statx current = {};
    ::statx(other.m_descriptor, "", AT_EMPTY_PATH | AT_STATX_FORCE_SYNC, STATX_BASIC_STATS, &current);
    if (!other.isOpen() || ::fstat(other.m_descriptor, &other.m_atOpening) != 0
        || other.m_atOpening.st_size != m_atOpening.st_size
        || other.m_atOpening.st_mtim.tv_sec != m_atOpening.st_mtim.tv_sec)
        return false;
    std::swap(m_descriptor, other.m_descriptor);
    m_atOpening = other.m_atOpening;
    return true;
}

InputFile::ReadEnd InputFile::readToEnd(const std::function<bool()>& mayContinue) const
{
    std::vector<char> piece(readSize);
    for (off_t offset = 0;;) {
        const ssize_t count = ::pread(m_descriptor, piece.data(), piece.size(), offset);
        if (count == 0)
            return ReadEnd::Whole;
        if (count < 0 && errno != EINTR)
            return ReadEnd::Failed;
        offset += count > 0 ? count : 0;
        if (!mayContinue())
            return ReadEnd::Stopped;
    }
}
