// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

/// Who can access a file: mode bits and an access control list (ACL) of POSIX.
struct Permissions {
    mode_t mode = 0666; // with a list, the bits of the group are its mask
    std::optional<gid_t> group; // absent if they are valid for any group
    std::string accessList; // the attribute "system.posix_acl_access"; empty for none
};

/// Those of a regular file in the folder, without its special bits. Empty if there is no regular file.
std::optional<Permissions> permissionsOf(int folder, const std::string& name);

/// Those of an open file, limited to reading and writing. Those of nobody if it is not open.
Permissions permissionsOf(int file);

/// Sets them for a file of this user. An access list that the file has got from its folder is removed. If the
/// file has another group, this group can do no more than everyone, and with an access list only the owner
/// can access the file. The same if a list cannot be set. Ignores other errors: file systems without
/// permissions refuse the calls.
void setPermissions(int file, const Permissions& permissions);
