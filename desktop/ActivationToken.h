// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

class QWidget;

namespace tarnwell
{

/// What a desktop hands over with a start that its user asked for. Desktops let a window come forward where
/// the program shows that the user wants it, and otherwise only let it ask for attention. A text is empty
/// where the desktop handed nothing over.
struct ActivationToken {
    QString token = {}; // of Wayland, and of later X11 desktops
    QString startupId = {}; // of X11; its end may say when the user acted

    /// What this process was started with. To be called before there is a QApplication, which uses it up.
    static ActivationToken fromEnvironment();

    /// What a call of org.freedesktop.Application carries. Whatever is no text counts as empty.
    static ActivationToken fromPlatformData(const QVariantMap& platformData);
    QVariantMap platformData() const;

    bool operator==(const ActivationToken&) const = default;
};

/// Brings the window, or the sheet that blocks it, to the front with the keyboard, as far as the desktop
/// accepts the token; without one nothing happens.
void activate(QWidget& window, const ActivationToken& token);

} // namespace tarnwell
