// SPDX-License-Identifier: MIT
#include "desktop/LateArrow.h"

#include <QApplication>
#include <QIconEngine>
#include <QPixmap>
#include <QProxyStyle>

namespace tarnwell
{

namespace
{

// For the first picture that comes from a file Qt loads every plugin that reads one, and this arrow, which
// hardly anybody ever sees, would be the only one before the window is shown.
constexpr QStyle::StandardPixmap arrow = QStyle::SP_ToolBarHorizontalExtensionButton;

class LateArrowStyle final : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;

    QIcon standardIcon(StandardPixmap kind, const QStyleOption* option, const QWidget* widget) const override;
};

/// The icon of whatever style is the application's when somebody wants to see it.
QIcon iconOfStyle()
{
    const auto* late = dynamic_cast<const LateArrowStyle*>(QApplication::style());
    return (late != nullptr ? late->baseStyle() : QApplication::style())->standardIcon(arrow);
}

class LateIconEngine final : public QIconEngine
{
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }

    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().actualSize(size, mode, state);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().pixmap(size, 1, mode, state);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override
    {
        return icon().pixmap((QSizeF(size) / scale).toSize(), scale, mode, state);
    }

    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        return icon().availableSizes(mode, state);
    }

    bool isNull() override { return false; }

    QIconEngine* clone() const override { return new LateIconEngine(*this); }

private:
    const QIcon& icon()
    {
        if (m_icon.isNull())
            m_icon = iconOfStyle();
        return m_icon;
    }

    QIcon m_icon;
};

QIcon LateArrowStyle::standardIcon(
    StandardPixmap kind, const QStyleOption* option, const QWidget* widget) const
{
    return kind == arrow ? QIcon(new LateIconEngine) : QProxyStyle::standardIcon(kind, option, widget);
}

} // namespace

void putOffArrowPicture()
{
    QApplication::setStyle(new LateArrowStyle(QApplication::style()));
}

} // namespace tarnwell
