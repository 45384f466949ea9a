// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace tarnwell
{

// Both functions keep the pixel format and return a new image that shares no pixels with the source. The
// result of a null source, or if memory runs out, is a null image.

/// The picture turned by `angle` degrees counterclockwise, a multiple of 90; no pixel's value changes.
QImage rotateImage(const QImage& source, double angle);

/// The picture with left and right exchanged if `horizontal`, top and bottom if `vertical`.
QImage flipImage(const QImage& source, bool horizontal, bool vertical);

} // namespace tarnwell
