// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace tarnwell
{

/// The application's style with a visible keyboard focus: buttons and the image view that have the focus show
/// a ring in the highlight colour just inside their edge. Most styles draw only a faint sign on a toolbar
/// button and none on a widget of ours. As in other styles, the ring appears once the user has moved the
/// focus by keyboard.
class FocusRingStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Puts the ring on top of the current style of the application, once.
    static void install();

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;

private:
    using QProxyStyle::QProxyStyle;
};

} // namespace tarnwell
