// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tarnwell
{

/// Identifies the state of the file at a path: two fingerprints of one path are equal if nothing was created,
/// replaced or written there in between. Consists of size, modification time and change time (ctime). The
/// inode is left out, because FAT and FUSE file systems can change the number of an untouched file.
class FileFingerprint
{
public:
    /// `path` is raw bytes. A symbolic link is covered together with its target. All paths without a file
    /// have the same fingerprint.
    explicit FileFingerprint(const std::string& path);

    bool operator==(const FileFingerprint&) const = default;

private:
    /// Size, and modification and change time in seconds and nanoseconds; zeros without a file.
    using Values = std::array<std::uint64_t, 5>;

    Values m_item;
    Values m_target;
};

} // namespace tarnwell
