// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace tarnwell
{

// Both functions keep the pixel format and return a new image that shares no pixels with the source. The
// result of a null source, or if memory runs out, is a null image.

/// Rotates by `angle` degrees counterclockwise, a multiple of 90. Keeps all pixel values.
QImage rotateImage(const QImage& source, double angle);

/// Exchanges left and right if `horizontal`, top and bottom if `vertical`.
QImage flipImage(const QImage& source, bool horizontal, bool vertical);

} // namespace tarnwell
