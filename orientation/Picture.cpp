// SPDX-License-Identifier: MIT
#include "orientation/Picture.h"

#include <QPainter>
#include <QTransform>

#include <cmath>

namespace tarnwell
{

namespace
{

// Painting has fast paths for these two formats and for few others.
QImage emptyImage(const QImage& like, QSize size)
{
    QImage image(size, like.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (like.hasAlphaChannel())
        image.fill(Qt::transparent);
    return image;
}

// The size as a vector, turned; for quarter turns that is the box around the turned picture.
QSize canvasSize(QSizeF size, double angle)
{
    const QPointF turned = QTransform().rotate(angle).map(QPointF(size.width(), size.height()));
    return {static_cast<int>(std::lround(std::abs(turned.x()))), static_cast<int>(std::lround(std::abs(turned.y())))};
}

} // namespace

QImage rotateImage(const QImage& source, double angle)
{
    if (source.isNull())
        return {};
    // Screen coordinates grow downwards: counterclockwise is negative here.
    const QTransform rotation = QTransform().rotate(-angle);
    QImage turned = emptyImage(source, canvasSize(source.size(), angle));
    const QPointF centre(turned.width() / 2.0, turned.height() / 2.0);
    QPainter painter(&turned);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setTransform(rotation * QTransform::fromTranslate(centre.x(), centre.y()));
    painter.drawImage(QPointF(-source.width() / 2.0, -source.height() / 2.0), source);
    return turned;
}

QImage flipImage(const QImage& source, bool horizontal, bool vertical)
{
    if (source.isNull())
        return {};
    QImage mirrored = emptyImage(source, source.size());
    QPainter painter(&mirrored);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    // Mirrored at whole pixels beforehand: through a negative scale the smooth interpolation would come out a grey
    // level or two beside the source.
    painter.drawImage(QPointF(0, 0), source.mirrored(horizontal, vertical));
    return mirrored;
}

} // namespace tarnwell
