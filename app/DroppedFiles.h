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

/// A copy of the list that outlives the drop event.
std::unique_ptr<QMimeData> copyOfFileNames(const QMimeData& data);

/// The first entry if it is a path. Stops the program if the list is empty.
std::optional<std::string> firstFile(const FileNameList& names);

} // namespace tarnwell
