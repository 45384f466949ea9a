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

/// What a drag names, in its order: absolute paths (raw bytes), and nothing for an entry that is no local
/// file.
using FileNameList = std::vector<std::optional<std::string>>;

/// The list that a drag carries; absent where it carries none, be it one without an entry.
std::optional<FileNameList> fileNameList(const QMimeData& data);

/// A drag that carries the same list; that of the event ends with the event.
std::unique_ptr<QMimeData> copyOfFileNames(const QMimeData& data);

/// The first entry, where it is a path. The others do not count; a list without an entry stops the program.
std::optional<std::string> firstFile(const FileNameList& names);

} // namespace tarnwell
