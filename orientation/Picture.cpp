// SPDX-License-Identifier: MIT
#include "orientation/Picture.h"

#include <QTransform>

namespace tarnwell
{

QImage rotateImage(const QImage& source, double angle)
{
    // Qt's y axis points down, so its positive angles turn clockwise.
    return source.transformed(QTransform().rotate(-angle), Qt::FastTransformation);
}

QImage flipImage(const QImage& source, bool horizontal, bool vertical)
{
    return source.mirrored(horizontal, vertical);
}

} // namespace tarnwell
