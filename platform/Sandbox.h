// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// The application sandbox of the platform (Flatpak). A sandboxed process sees no files of the user but those
/// that its portals grant, each under a path and with a file number of the grant's own. Only the granted name
/// exists outside: a file under another name in the same folder is hidden from the user.
namespace tarnwell::Sandbox
{

/// Whether this process runs in the sandbox.
bool isInside();

/// Whether size, modification time and change time of the files are the same, which two grants of one file
/// have in common. False if one of the paths (raw bytes) has no regular file.
bool areGrantsOfOneFile(const std::string& path, const std::string& otherPath);

} // namespace tarnwell::Sandbox
