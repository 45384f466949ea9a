// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// A fresh folder under the system's temporary folder that only this user may enter and whose name nobody can
/// guess. It goes with the object, together with the files in it.
class TemporaryDirectory
{
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The folder's absolute path, ending in "/". Where no folder could be made anywhere, the path of one
    /// that does not exist, so that whatever is to be written there fails as a full disk would.
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace tarnwell
