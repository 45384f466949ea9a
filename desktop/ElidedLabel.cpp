// SPDX-License-Identifier: MIT
#include "desktop/ElidedLabel.h"

#include "desktop/PaletteColour.h"

#include <QAccessibleWidget>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace tarnwell
{

namespace
{

/// Reads the text when it is asked for. QWidget::setAccessibleDescription makes a screen reader speak each
/// time, and the picture's description already says what has changed.
class AccessibleElidedLabel : public QAccessibleWidget
{
public:
    explicit AccessibleElidedLabel(ElidedLabel* label)
        : QAccessibleWidget(label, QAccessible::StaticText)
    {
    }

    QString text(QAccessible::Text type) const override
    {
        const auto* label = qobject_cast<const ElidedLabel*>(object());
        return type == QAccessible::Description ? label->text() : QAccessibleWidget::text(type);
    }
};

QAccessibleInterface* accessToElidedLabel(const QString& className, QObject* object)
{
    auto* label = className == QLatin1String(ElidedLabel::staticMetaObject.className())
        ? qobject_cast<ElidedLabel*>(object)
        : nullptr;
    return label != nullptr ? new AccessibleElidedLabel(label) : nullptr;
}

} // namespace

ElidedLabel::ElidedLabel(QWidget* parent)
    : QLabel(parent)
{
    QAccessible::installFactory(accessToElidedLabel); // Qt ignores a second installation
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
}

QSize ElidedLabel::minimumSizeHint() const
{
    const int around = contentsMargins().left() + contentsMargins().right() + 2 * margin();
    return {fontMetrics().horizontalAdvance(QChar(0x2026)) + around, QLabel::minimumSizeHint().height()};
}

QString ElidedLabel::shownText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width() - 2 * margin());
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    // An empty text hides a tool tip that is shown.
    const auto* help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(), shownText() == text() ? QString() : text(), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(mixedWithWindow(palette(), secondaryTextShare));
    painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shownText());
}

} // namespace tarnwell
