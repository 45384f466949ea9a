// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// A new folder with a random name and mode 0700 in the first of these folders that has 16 MiB of room:
/// TMPDIR, /tmp, /var/tmp, XDG_RUNTIME_DIR, and /dev/shm, which is in memory. If none has, the first one in
/// which a small file can be written; if there is none either, the first one in which it can be created. The
/// destructor removes the folder together with everything in it.
class TemporaryDirectory
{
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The folder's absolute path, ending in "/". If no folder could be created anywhere, a path at which
    /// nothing can be created, so that writing there fails as on a full disk.
    const std::string& path() const { return m_path; }

    /// Creates the folder again if it was removed. The path stays the same, unless another item has taken its
    /// place, the path cannot be created any more, or its file system has become full and another folder has
    /// more room: then it is a new one, and the earlier folder is removed.
    void restore();

private:
    std::string m_path;
};

} // namespace tarnwell
