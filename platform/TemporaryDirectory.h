// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// A new folder below the system's temporary folder: mode 0700, with a random name. The destructor removes it
/// together with everything in it.
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
    /// place or the path cannot be created any more: then it is a new one.
    void restore();

private:
    std::string m_path;
};

} // namespace tarnwell
