// SPDX-License-Identifier: MIT
#include "desktop/FocusRingStyle.h"

#include "desktop/ImageView.h"

#include <QApplication>
#include <QPainter>
#include <QPen>
#include <QPushButton>
#include <QStyleOption>
#include <QToolButton>

namespace tarnwell
{

namespace
{

constexpr qreal lineWidth = 2;

/// Other widgets, such as lists, draw a focus frame around a part of themselves.
bool hasRing(const QWidget* widget)
{
    return qobject_cast<const QPushButton*>(widget) != nullptr
        || qobject_cast<const QToolButton*>(widget) != nullptr
        || qobject_cast<const ImageView*>(widget) != nullptr;
}

void paintRing(QPainter& painter, const QRect& edge, const QColor& colour)
{
    QPen pen(colour, lineWidth);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(pen);
    constexpr qreal half = lineWidth / 2;
    painter.drawRect(QRectF(edge).adjusted(half, half, -half, -half));
    painter.restore();
}

} // namespace

void FocusRingStyle::install()
{
    if (qobject_cast<FocusRingStyle*>(QApplication::style()) == nullptr)
        QApplication::setStyle(new FocusRingStyle(QApplication::style()->name()));
}

// Some styles draw no focus frame for buttons, so these two draw it after the button.
void FocusRingStyle::drawControl(
    ControlElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_PushButton && option->state.testFlag(State_HasFocus))
        drawPrimitive(PE_FrameFocusRect, option, painter, widget);
}

void FocusRingStyle::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex* option, QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ToolButton && option->state.testFlag(State_HasFocus))
        drawPrimitive(PE_FrameFocusRect, option, painter, widget);
}

void FocusRingStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption* option, QPainter* painter, const QWidget* widget) const
{
    if (element != PE_FrameFocusRect || !hasRing(widget))
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    else if (option->state.testFlag(State_KeyboardFocusChange))
        paintRing(*painter, widget->rect(), option->palette.color(QPalette::Highlight));
}

} // namespace tarnwell
