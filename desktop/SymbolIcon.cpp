// SPDX-License-Identifier: MIT
#include "desktop/SymbolIcon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace tarnwell
{

namespace
{

QColor tintFor(QIcon::Mode mode)
{
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
    return QGuiApplication::palette().color(group, role);
}

QPixmap renderTinted(const QString& svgPath, QSize deviceSize, const QColor& tint)
{
    QPixmap pixmap(deviceSize);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(svgPath);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), tint);
    return pixmap;
}

/// Draws one symbol at any size, pixel ratio and mode. The key of a rendered pixmap in QPixmapCache contains
/// its colour, so a new palette does not find pixmaps of the old one.
class SymbolIconEngine final : public QIconEngine
{
public:
    explicit SymbolIconEngine(const QString& svgPath)
        : m_svgPath(svgPath)
    {
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }

    QPixmap pixmap(const QSize& deviceSize, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        if (deviceSize.isEmpty())
            return {};
        const QColor tint = tintFor(mode);
        const QString key = cacheKey(deviceSize, tint);
        QPixmap symbol;
        if (!QPixmapCache::find(key, &symbol)) {
            symbol = renderTinted(m_svgPath, deviceSize, tint);
            QPixmapCache::insert(key, symbol);
        }
        return symbol;
    }

    QPixmap scaledPixmap(const QSize& deviceSize, QIcon::Mode mode, QIcon::State state, qreal scale) override
    {
        QPixmap symbol = pixmap(deviceSize, mode, state);
        symbol.setDevicePixelRatio(scale);
        return symbol;
    }

    QIconEngine* clone() const override { return new SymbolIconEngine(*this); }

private:
    QString cacheKey(QSize deviceSize, const QColor& tint) const
    {
        return QStringLiteral("symbol:%1:%2x%3:%4")
            .arg(m_svgPath, QString::number(deviceSize.width()), QString::number(deviceSize.height()),
                tint.name(QColor::HexArgb));
    }

    QString m_svgPath;
};

} // namespace

QIcon symbolIcon(const QString& svgResourcePath)
{
    return QIcon(new SymbolIconEngine(svgResourcePath));
}

} // namespace tarnwell
