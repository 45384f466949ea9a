// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>

// In a sandbox such as Flatpak a file that the user has chosen is in a folder of its own, on the FUSE file
// system of the document portal. Only the granted name exists outside. A file with another name is a hidden
// one outside, ".xdp-NAME-RANDOM". Therefore an older file must not be renamed there. The portal refuses to
// rename the granted file without replacing another one: renameat2 fails with EEXIST for every name, or
// with EINVAL if the file system below does not support such a rename.

/// Whether the folder is on the file system of the document portal.
bool isDocumentPortal(int folder);

/// Whether a list of mounts in the format of /proc/self/mountinfo has the document portal on this device.
bool isDocumentPortal(const std::string& mounts, dev_t device);
