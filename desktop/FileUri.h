// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

class QByteArray;

namespace tarnwell
{

/// The absolute path (raw bytes) of the file with that URI: for a "file" URI on this machine the
/// percent-decoded path; for a URI of another scheme, such as "sftp", the path at which the desktop has
/// mounted the place, if GIO knows one. Absent for other URIs and for a path with a NUL byte. The bytes need
/// not be UTF-8.
std::optional<std::string> localPath(QByteArray uri);

} // namespace tarnwell
