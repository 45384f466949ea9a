// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace tarnwell
{

// Whole pixels from one picture into another, none of them changed: what drawing at whole pixels comes to, at
// the speed of memory. Both pictures have 32 bits a pixel, are not null and differ; `target` has the size
// that the result takes.

/// Turned by `quarterTurns`, 0 to 3, counterclockwise.
void copyTurned(const QImage& source, int quarterTurns, QImage& target);

/// Left and right exchanged where `horizontal`, top and bottom where `vertical`.
void copyMirrored(const QImage& source, bool horizontal, bool vertical, QImage& target);

} // namespace tarnwell
