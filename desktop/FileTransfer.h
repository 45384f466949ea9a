// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

class QByteArray;
class QMimeData;
class QString;

namespace tarnwell
{

// Files that a drag carries as a key for the file transfer portal (org.freedesktop.portal.FileTransfer),
// which grants the files to a sandboxed program. GTK and KDE programs offer such a key beside their list of
// URIs.

/// The MIME type under which the drag carries the key; empty if it carries none.
QString fileTransferType(const QMimeData& drag);

/// The paths (raw bytes) of the files. The portal answers once for each key. Absent if it does not answer
/// within ten seconds, or with an error. Paints the window and drops input meanwhile. Main thread.
std::optional<std::vector<std::string>> retrieveFiles(const QByteArray& key);

} // namespace tarnwell
