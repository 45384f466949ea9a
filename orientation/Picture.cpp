// SPDX-License-Identifier: MIT
#include "orientation/Picture.h"

#include <QTransform>

namespace tarnwell
{

namespace
{

/// Qt returns the source itself, which shares its pixels, if there is nothing to turn or mirror.
QImage separateImage(const QImage& result, const QImage& source)
{
    return result.cacheKey() == source.cacheKey() ? source.copy() : result;
}

} // namespace

QImage rotateImage(const QImage& source, double angle)
{
    // Qt's positive angles are clockwise, because its y axis points down.
    return separateImage(source.transformed(QTransform().rotate(-angle), Qt::FastTransformation), source);
}

QImage flipImage(const QImage& source, bool horizontal, bool vertical)
{
    return separateImage(source.mirrored(horizontal, vertical), source);
}

} // namespace tarnwell
