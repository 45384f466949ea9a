// SPDX-License-Identifier: MIT
#include "orientation/Picture.h"

#include "orientation/PictureMemory.h"
#include "orientation/PixelCopy.h"

#include <QPainter>
#include <QTransform>

#include <cmath>

namespace tarnwell
{

namespace
{

// One of the two formats in which a pixel is one number of 32 bits and painting has fast paths.
QImage::Format formatLike(const QImage& picture)
{
    return picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
}

// The size as a vector, turned; for quarter turns that is the box around the turned picture.
QSize canvasSize(QSizeF size, double angle)
{
    const QPointF turned = QTransform().rotate(angle).map(QPointF(size.width(), size.height()));
    return {static_cast<int>(std::lround(std::abs(turned.x()))),
        static_cast<int>(std::lround(std::abs(turned.y())))};
}

QImage paintedRotation(const QImage& source, double angle)
{
    QImage turned(canvasSize(source.size(), angle), source.format());
    turned.fill(Qt::transparent);
    const QPointF centre(turned.width() / 2.0, turned.height() / 2.0);
    QPainter painter(&turned);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    // Screen coordinates grow downwards: counterclockwise is negative here.
    painter.setTransform(QTransform().rotate(-angle) * QTransform::fromTranslate(centre.x(), centre.y()));
    painter.drawImage(QPointF(-source.width() / 2.0, -source.height() / 2.0), source);
    return turned;
}

/// The number of quarter turns counterclockwise, 0 to 3; -1 for an angle between them.
int quarterTurns(double angle)
{
    const double quarters = angle / 90;
    return std::trunc(quarters) == quarters ? static_cast<int>(std::fmod(std::fmod(quarters, 4) + 4, 4)) : -1;
}

} // namespace

QImage rotateImage(const QImage& source, double angle)
{
    if (source.isNull())
        return {};
    const QImage pixels = source.convertToFormat(formatLike(source));
    const int turns = quarterTurns(angle);
    if (turns < 0)
        return paintedRotation(pixels, angle);
    QImage turned = pictureInKeptMemory(canvasSize(pixels.size(), angle), pixels.format());
    if (!turned.isNull())
        copyTurned(pixels, turns, turned);
    return turned;
}

QImage flipImage(const QImage& source, bool horizontal, bool vertical)
{
    if (source.isNull())
        return {};
    const QImage pixels = source.convertToFormat(formatLike(source));
    QImage mirrored = pictureInKeptMemory(pixels.size(), pixels.format());
    if (!mirrored.isNull())
        copyMirrored(pixels, horizontal, vertical, mirrored);
    return mirrored;
}

} // namespace tarnwell
