// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace tarnwell
{

/// A path's bytes as text for a widget. Bytes that are no UTF-8 are shown as replacement characters.
QString textOfPath(const std::string& path);

/// The bytes of a path that a widget gave.
std::string pathOfText(const QString& text);

/// A UTF-8 text of the program's own for a widget.
QString textOf(const std::string& utf8);

} // namespace tarnwell
