// SPDX-License-Identifier: MIT
#include "desktop/FocusRing.h"

#include <QEvent>
#include <QPainter>
#include <QPen>
#include <QWidget>

namespace tarnwell
{

namespace
{

constexpr qreal lineWidth = 2;

void paintRing(QWidget& widget)
{
    QPen pen(widget.palette().color(QPalette::Highlight), lineWidth);
    pen.setJoinStyle(Qt::MiterJoin);
    QPainter painter(&widget);
    painter.setPen(pen);
    constexpr qreal half = lineWidth / 2;
    painter.drawRect(QRectF(widget.rect()).adjusted(half, half, -half, -half));
}

} // namespace

FocusRing::FocusRing(QWidget& widget)
    : QObject(&widget)
{
    widget.installEventFilter(this);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event)
{
    auto* widget = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::Paint || widget == nullptr || !widget->hasFocus()
        || !widget->window()->testAttribute(Qt::WA_KeyboardFocusChange))
        return false;
    watched->event(event); // the widget itself comes first, under the ring
    paintRing(*widget);
    return true;
}

} // namespace tarnwell
