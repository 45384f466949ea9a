// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tarnwell
{

/// Identifies the state of what a path names: two fingerprints of one path are equal if nothing was created,
/// replaced, written or removed there in between. Includes the change time (ctime), so that writing the same
/// bytes again makes a difference.
class FileFingerprint
{
public:
    /// The item at `path` (raw bytes): a symbolic link itself together with the item that it leads to. A path
    /// at which nothing can be found has a fingerprint too; all such fingerprints are equal.
    explicit FileFingerprint(const std::string& path);

    bool operator==(const FileFingerprint&) const = default;

private:
    /// Device, inode, size, and modification and change time in seconds and nanoseconds; zeros for nothing.
    using Values = std::array<std::uint64_t, 7>;

    Values m_item;
    Values m_target;
};

} // namespace tarnwell
