// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>

namespace tarnwell
{

/// An icon drawn from a one-colour SVG and tinted with the application palette, now and after every later
/// change of that palette. Only the SVG's opacity counts; its own colours are replaced.
QIcon symbolIcon(const QString& svgResourcePath);

} // namespace tarnwell
