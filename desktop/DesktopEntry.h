// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QUrl>

namespace tarnwell
{

/// The command that opens `file` with the installed application of exactly that name, program first; empty
/// where no desktop entry bears the name. Reads the desktop entries of the user's and the system's data
/// folders.
QStringList commandOfApplicationNamed(const QString& name, const QUrl& file);

/// The command that a desktop entry's "Exec" text means for `file`; field codes for a file are filled in,
/// others left out.
QStringList commandOfExecText(const QString& exec, const QUrl& file);

} // namespace tarnwell
