// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace tarnwell
{

// The conversions between the program's UTF-8 and bytes and the text of widgets, in one place each, so that a
// path never goes through QString::fromStdString.

/// A path's bytes as text for a widget. Bytes that are not UTF-8 become replacement characters.
QString textOfPath(const std::string& path);

/// The bytes of the path in a widget's text.
std::string pathOfText(const QString& text);

/// A UTF-8 text for a widget.
QString textOf(const std::string& utf8);

} // namespace tarnwell
