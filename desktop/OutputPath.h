// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QString>

namespace tarnwell
{

/// The path with the extension of an MP4 file, which is added if it is missing.
QString withOutputExtension(const QString& path);

/// What a file panel does with a path that was chosen for a file to write.
enum class OutputPath { Usable, IsFolder, FolderMissing, FolderClosed, Exists };

/// Examines the file system. `path` is absolute.
OutputPath examineOutputPath(const QString& path);

/// The message about a path that cannot be used, or the question whether to replace the file; with "Yes" as
/// the answer that does so. A sheet on `parent`, not shown yet. Null for a path that needs neither.
QMessageBox* makeOutputPathBox(OutputPath state, const QString& path, QWidget& parent);

} // namespace tarnwell
