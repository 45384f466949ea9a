// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace tarnwell
{

/// Shows where the keyboard is, by a ring in the palette's highlight colour just inside the widget's edge: a
/// style's own sign is faint on a toolbar, and lacking on a picture. Like the styles' own, it is for those
/// who have used the keyboard to move about. Belongs to the widget.
class FocusRing : public QObject
{
    Q_OBJECT

public:
    explicit FocusRing(QWidget& widget);

    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace tarnwell
