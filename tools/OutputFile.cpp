// SPDX-License-Identifier: MIT
#include "tools/OutputFile.h"

#include "tools/HiddenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr mode_t ownerOnly = 0600;
constexpr mode_t allPermissions = 0777;

/// Limits the permissions of the group to those of everyone.
mode_t limitedForAnotherGroup(mode_t mode)
{
    const mode_t others = mode & 07U;
    return mode & ~(070U & ~(others << 3U));
}

mode_t umaskOfProcess()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

} // namespace

OutputFile::OutputFile(const std::string& path, mode_t mode, std::optional<gid_t> group)
    : m_place(path)
    , m_mode(mode)
    , m_group(group)
{
    if (!m_place.isOpen())
        return;
    m_descriptor = ::openat(m_place.folder(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, ownerOnly);
    if (isOpen())
        return;
    removeStaleHiddenFiles(m_place.folder());
    m_descriptor = createHiddenFile(m_place.folder(), m_hidden);
    if (!isOpen())
        m_hidden.clear();
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

bool OutputFile::hasGroup(gid_t group) const
{
    struct stat status = {};
    return ::fstat(m_descriptor, &status) == 0 && status.st_gid == group;
}

/// Ignores errors: file systems without permissions refuse the calls. The file then keeps the permissions for
/// its owner only, or those of the mount.
void OutputFile::setPermissions() const
{
    struct stat older = {};
    const bool replaces
        = ::fstatat(m_place.folder(), m_place.name().c_str(), &older, AT_SYMLINK_NOFOLLOW) == 0
        && S_ISREG(older.st_mode);
    mode_t mode = (m_mode & ~umaskOfProcess()) | ownerOnly;
    std::optional<gid_t> group = m_group;
    if (replaces) {
        mode = older.st_mode & allPermissions;
        group = older.st_gid;
        [[maybe_unused]] const int result = ::fchown(m_descriptor, static_cast<uid_t>(-1), older.st_gid);
    }
    if (group && !hasGroup(*group))
        mode = limitedForAnotherGroup(mode);
    [[maybe_unused]] const int result = ::fchmod(m_descriptor, mode);
}

bool OutputFile::sync() const
{
    setPermissions();
    return ::fsync(m_descriptor) == 0;
}

bool OutputFile::moveToPath()
{
    if (m_place.hasFile()) {
        m_older = m_place.putAside("previous");
        if (m_older.empty())
            return false;
    }
    if (!setName())
        return false;
    m_place.sync();
    return true;
}

/// Fails if a file exists at the path.
bool OutputFile::setName()
{
    const std::string& name = m_place.name();
    if (m_hidden.empty())
        return ::linkat(AT_FDCWD, writablePath().c_str(), m_place.folder(), name.c_str(), AT_SYMLINK_FOLLOW)
            == 0;
    if (!renameToFreeName(m_place.folder(), m_hidden, name))
        return false;
    m_hidden.clear();
    return true;
}

void OutputFile::undoMove()
{
    ::unlinkat(m_place.folder(), m_place.name().c_str(), 0);
}

bool OutputFile::deleteOlder()
{
    return ::unlinkat(m_place.folder(), m_older.c_str(), 0) == 0;
}
