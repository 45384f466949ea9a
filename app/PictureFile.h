// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <string>

namespace tarnwell
{

/// Reads the still frame, a file that a tool made from an untrusted video. The file must be a regular file of
/// at most 512 MiB, not a symbolic link. It must have the format JPEG, because files of other formats can
/// refer to further files, and at most 2^28 pixels. Null otherwise. `path` is raw bytes. Any thread.
QImage loadStill(const std::string& path);

/// Reads a PNG picture of the program's own under the same limits; symbolic links are followed.
QImage loadPoster(const std::string& path);

} // namespace tarnwell
