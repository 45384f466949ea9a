// SPDX-License-Identifier: MIT
#include "tools/OutputFile.h"

#include "tools/FileCopy.h"
#include "tools/HiddenFiles.h"
#include "tools/TemporaryFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{

constexpr mode_t ownerOnly = 0600;

mode_t umaskOfProcess()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

/// Whether the empty file can be read and changed after it has been written to. It is empty afterwards if it
/// can. An error of the disk, such as a full one, does not mean that it cannot.
bool isRewritable(int file)
{
    char byte = 'a';
    if (::pwrite(file, &byte, 1, 0) == 1 && ::pread(file, &byte, 1, 0) == 1
        && ::pwrite(file, &byte, 1, 0) == 1 && ::ftruncate(file, 0) == 0)
        return true;
    return errno == ENOSPC || errno == EDQUOT || errno == EIO;
}

/// File systems that keep nothing in the memory of this machine can refuse fsync.
bool syncData(int file)
{
    return ::fsync(file) == 0 || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
}

} // namespace

OutputFile::OutputFile(const std::string& path, Permissions permissions)
    : m_place(path)
    , m_permissions(std::move(permissions))
{
    if (!m_place.isOpen())
        return;
    m_descriptor = ::openat(m_place.folder(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, ownerOnly);
    if (isOpen())
        return;
    removeStaleHiddenFiles(m_place.folder());
    m_descriptor = createHiddenFile(m_place.folder(), m_hidden);
    if (!isOpen()) {
        m_hidden.clear();
    } else if (!isRewritable(m_descriptor)) {
        ::close(m_descriptor);
        m_descriptor = createTemporaryFile();
        m_isTemporary = true;
    }
}

OutputFile::~OutputFile()
{
    if (isOpen())
        ::close(m_descriptor);
    if (!m_hidden.empty())
        ::unlinkat(m_place.folder(), m_hidden.c_str(), 0);
}

std::string OutputFile::writablePath() const
{
    return "/proc/self/fd/" + std::to_string(m_descriptor);
}

void OutputFile::empty() const
{
    [[maybe_unused]] const int result = ::ftruncate(m_descriptor, 0);
    ::lseek(m_descriptor, 0, SEEK_SET);
}

void OutputFile::setPermissions(int file) const
{
    if (const auto older = permissionsOf(m_place.folder(), m_place.name())) {
        [[maybe_unused]] const int result = ::fchown(file, static_cast<uid_t>(-1), *older->group);
        ::setPermissions(file, *older);
        return;
    }
    Permissions permissions = m_permissions;
    permissions.mode = (permissions.mode & ~umaskOfProcess()) | ownerOnly;
    ::setPermissions(file, permissions);
}

bool OutputFile::sync(const std::function<bool()>& mayContinue) const
{
    if (m_isTemporary)
        return copyToHiddenFile(mayContinue);
    setPermissions(m_descriptor);
    return syncData(m_descriptor);
}

bool OutputFile::copyToHiddenFile(const std::function<bool()>& mayContinue) const
{
    const int file
        = ::openat(m_place.folder(), m_hidden.c_str(), O_WRONLY | O_TRUNC | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0)
        return false;
    const CopyEnd end = copyFileInOrder(m_descriptor, file, [&](off_t /*copied*/) { return mayContinue(); });
    if (end == CopyEnd::Copied)
        setPermissions(file);
    const bool isSynced = end == CopyEnd::Copied && syncData(file);
    const int error = end == CopyEnd::Cancelled ? ECANCELED : errno;
    // Such file systems can report write errors at the end only.
    const bool isClosed = ::close(file) == 0;
    if (!isSynced)
        errno = error;
    return isSynced && isClosed;
}

bool OutputFile::putOlderAside()
{
    if (!m_place.hasFile())
        return true;
    m_older = m_place.putAside("previous");
    m_replacesOlder = m_older.empty() && errno == ENOTSUP && !m_hidden.empty();
    return hasOlder() || m_replacesOlder;
}

bool OutputFile::moveToPath()
{
    if (!setName())
        return false;
    m_isMoved = true;
    // If an older file was replaced, either file can be at the path after a power failure, and a cancel
    // would come too late during this wait.
    if (!m_replacesOlder)
        m_place.sync();
    return true;
}

/// Fails if a file exists at the path, unless it is to be replaced.
bool OutputFile::setName()
{
    const int folder = m_place.folder();
    const char* name = m_place.name().c_str();
    if (m_hidden.empty())
        return ::linkat(AT_FDCWD, writablePath().c_str(), folder, name, AT_SYMLINK_FOLLOW) == 0;
    if (!m_replacesOlder && renameToFreeName(folder, m_hidden, name)) {
        m_hidden.clear();
        return true;
    }
    if ((!m_replacesOlder && errno != ENOTSUP) || ::renameat(folder, m_hidden.c_str(), folder, name) != 0)
        return false;
    m_hidden.clear();
    return true;
}

bool OutputFile::isAtPath() const
{
    if (!m_isTemporary)
        return m_place.holds(m_descriptor);
    struct stat here = {};
    struct stat own = {};
    return ::fstatat(m_place.folder(), m_place.name().c_str(), &here, AT_SYMLINK_NOFOLLOW) == 0
        && ::fstat(m_descriptor, &own) == 0 && here.st_size == own.st_size;
}

bool OutputFile::undoMove()
{
    if (m_isMoved && isAtPath())
        ::unlinkat(m_place.folder(), m_place.name().c_str(), 0);
    if (hasOlder() && !renameToFreeName(m_place.folder(), m_older, m_place.name()))
        return false;
    m_older.clear();
    return true;
}

bool OutputFile::deleteOlder()
{
    return ::unlinkat(m_place.folder(), m_older.c_str(), 0) == 0;
}
