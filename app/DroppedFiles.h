// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class QMimeData;

namespace tarnwell
{

/// The entries of a drag in their order: absolute paths (raw bytes); empty for an entry that is no local
/// file.
using FileNameList = std::vector<std::optional<std::string>>;

/// The drag's list of files; absent if it has none or an empty one.
std::optional<FileNameList> fileNameList(const QMimeData& data);

/// Whether the drag's files must be retrieved through the file transfer portal: in the sandbox where the drag
/// offers it, because paths of a list do not exist there; otherwise only if the drag has no list.
bool isFileTransfer(const QMimeData& data);

/// The files of a drag that isFileTransfer, with empty entries for folders. The portal grants them once, so
/// call it for a drop only. Absent if the portal fails. Paints the window and drops input meanwhile.
std::optional<FileNameList> retrieveFileNameList(const QMimeData& data);

/// A copy of the list, or of the key for the portal, that outlives the drop event.
std::unique_ptr<QMimeData> copyOfFileNames(const QMimeData& data);

/// The first entry if it is a path. Stops the program if the list is empty.
std::optional<std::string> firstFile(const FileNameList& names);

} // namespace tarnwell
