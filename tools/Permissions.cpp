// SPDX-License-Identifier: MIT
#include "tools/Permissions.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{

constexpr const char* listAttribute = "system.posix_acl_access";
constexpr mode_t ownerOnly = 0600;
constexpr mode_t allPermissions = 0777;
constexpr mode_t readableAndWritable = 0666;

std::string accessListAt(const std::string& path)
{
    std::string list;
    const ssize_t size = ::getxattr(path.c_str(), listAttribute, nullptr, 0);
    if (size <= 0)
        return list;
    list.resize(static_cast<std::size_t>(size));
    return ::getxattr(path.c_str(), listAttribute, list.data(), list.size()) == size ? list : std::string();
}

std::string pathOf(int file)
{
    return "/proc/self/fd/" + std::to_string(file);
}

/// Removes the list of the file if `list` is empty.
bool setAccessList(int file, const std::string& list)
{
    if (!list.empty())
        return ::fsetxattr(file, listAttribute, list.data(), list.size(), 0) == 0;
    return ::fremovexattr(file, listAttribute) == 0 || ::fgetxattr(file, listAttribute, nullptr, 0) <= 0;
}

/// Limits the permissions of the group to those of everyone.
mode_t limitedForAnotherGroup(mode_t mode)
{
    const mode_t others = mode & 07U;
    return mode & ~(070U & ~(others << 3U));
}

bool hasGroup(int file, gid_t group)
{
    struct stat status = {};
    return ::fstat(file, &status) == 0 && status.st_gid == group;
}

} // namespace

std::optional<Permissions> permissionsOf(int folder, const std::string& name)
{
    struct stat status = {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return Permissions{
        status.st_mode & allPermissions, status.st_gid, accessListAt(pathOf(folder) + "/" + name)};
}

Permissions permissionsOf(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0)
        return {0, std::nullopt, {}};
    return {status.st_mode & readableAndWritable, status.st_gid, accessListAt(pathOf(file))};
}

void setPermissions(int file, const Permissions& permissions)
{
    const bool isOfGroup = !permissions.group || hasGroup(file, *permissions.group);
    mode_t mode = isOfGroup ? permissions.mode : limitedForAnotherGroup(permissions.mode);
    // The mode of a list limits named users and groups, but not to what the list gives to the group and to
    // everyone: without the list it could allow more.
    if (!permissions.accessList.empty() && !isOfGroup)
        mode = ownerOnly;
    else if (!setAccessList(file, permissions.accessList))
        mode = ownerOnly;
    [[maybe_unused]] const int result = ::fchmod(file, mode);
}
