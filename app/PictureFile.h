// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <string>

namespace tarnwell
{

/// Reads the still frame, a file that a tool made from a stranger's video. The file must be a regular file,
/// at the path itself and not behind a symbolic link, of at most 512 MiB. Its bytes must be JPEG whatever
/// they look like, because other formats can refer to further files, and of at most 2^28 pixels. Null
/// otherwise. `path` is raw bytes. Any thread.
QImage loadStill(const std::string& path);

/// Reads a PNG picture of the program's own under the same limits; symbolic links are followed.
QImage loadPoster(const std::string& path);

} // namespace tarnwell
