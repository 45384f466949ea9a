// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace tarnwell
{

/// What the file system says of one item.
struct FileAttributes {
    bool isDirectory = false;
    /// Bytes; absent for an item that has no size of its own, such as a device, a socket or a pipe.
    std::optional<std::uint64_t> size;
};

/// The attributes of the item at `path` (raw bytes; a symbolic link is followed), or the system's own
/// description of why they cannot be read.
std::variant<FileAttributes, std::string> attributesOfItem(const std::string& path);

/// Whether something stands at `path` that is not a directory.
bool isExistingFile(const std::string& path);

} // namespace tarnwell
