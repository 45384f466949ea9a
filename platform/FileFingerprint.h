// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tarnwell
{

/// Identifies the content of the file at a path: two fingerprints of one path are equal if the same bytes are
/// there and nothing was written in between. Consists of size and modification time. A rename and back, a new
/// link or other permissions change neither, but they change the change time (ctime), and FAT and FUSE file
/// systems can change the number of an untouched file. Not detected: a file of the same size that is written
/// within the resolution of the modification time (2 s on FAT), or with the old time set again.
class FileFingerprint
{
public:
    /// `path` is raw bytes. A symbolic link is covered together with its target. All paths without a file
    /// have the same fingerprint.
    explicit FileFingerprint(const std::string& path);

    bool operator==(const FileFingerprint&) const = default;

private:
    /// Size, and modification time in seconds and nanoseconds; zeros without a file.
    using Values = std::array<std::uint64_t, 3>;

    Values m_item;
    Values m_target;
};

} // namespace tarnwell
