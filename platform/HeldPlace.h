// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// A name in a folder that is held open: a folder or link that takes the folder's path later does not change
/// what path() means. If the folder cannot be opened, or has no name as in "clip.mp4", path() is the original
/// path.
class HeldPlace
{
public:
    /// `path` is raw bytes.
    explicit HeldPlace(const std::string& path);
    ~HeldPlace();
    HeldPlace(const HeldPlace&) = delete;
    HeldPlace& operator=(const HeldPlace&) = delete;

    const std::string& originalPath() const { return m_originalPath; }

    /// Whether the folder is still the one at the original path, by device and number. True if it could not
    /// be opened or has no name. An open folder keeps its number, also on file systems without fixed ones.
    bool isAtOriginalPath() const;

    /// A path for this process and while this object exists.
    std::string path() const;

private:
    std::string originalFolder() const; // ends in "/"; empty for none

    std::string m_originalPath;
    int m_folder = -1;
};

} // namespace tarnwell
