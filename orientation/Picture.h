// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace tarnwell
{

// Drawings of a whole picture into a fresh one. Main thread; sizes are pixels; the results keep the source's
// transparency. An empty source, or a lack of memory, gives an empty picture.

/// The picture turned about its centre by `angle` degrees counterclockwise, on a canvas that just holds it.
QImage rotateImage(const QImage& source, double angle);

/// The picture with left and right exchanged where `horizontal`, top and bottom where `vertical`.
QImage flipImage(const QImage& source, bool horizontal, bool vertical);

} // namespace tarnwell
