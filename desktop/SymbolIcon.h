// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>

namespace tarnwell
{

/// An icon drawn from a one-colour SVG in the colours of the application palette, so that it is legible in
/// light, dark and high-contrast themes and follows a change of theme; Qt's own SVG icons keep the file's
/// colours. Only the SVG's opacity is used.
QIcon symbolIcon(const QString& svgResourcePath);

} // namespace tarnwell
