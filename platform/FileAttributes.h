// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace tarnwell
{

/// Attributes of one file system item.
struct FileAttributes {
    bool isDirectory = false;
    /// In bytes; absent for a device, a socket or a pipe.
    std::optional<std::uint64_t> size;
};

/// The attributes of the item at `path` (raw bytes; symbolic links are followed), or the system's error
/// message.
std::variant<FileAttributes, std::string> attributesOfItem(const std::string& path);

/// True if there is an item at `path` that is not a directory.
bool isExistingFile(const std::string& path);

} // namespace tarnwell
