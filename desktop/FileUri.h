// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

class QByteArray;

namespace tarnwell
{

/// The absolute path (raw bytes) of a "file" URI on this machine, percent-decoded. Empty for other URIs and
/// for a path with a NUL byte. The bytes need not be UTF-8.
std::optional<std::string> localPath(QByteArray uri);

} // namespace tarnwell
