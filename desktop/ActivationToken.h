// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantMap>

class QWidget;

namespace tarnwell
{

/// The startup data that a desktop passes to a program that the user starts. With it the desktop allows a
/// window to come to the front; without it the window can only request attention. A text is empty if the
/// desktop passed nothing.
struct ActivationToken {
    QString token = {}; // of Wayland, and of later X11 desktops
    QString startupId = {}; // of X11; may end with the time of the user's action

    /// The token in this process's environment. Call it before QApplication is constructed, which removes the
    /// variables.
    static ActivationToken fromEnvironment();

    /// The token in the platform data of an org.freedesktop.Application call. A value of another type counts
    /// as empty.
    static ActivationToken fromPlatformData(const QVariantMap& platformData);
    QVariantMap platformData() const;

    bool operator==(const ActivationToken&) const = default;
};

/// Asks the desktop to bring the window, or the sheet that blocks it, to the front with the keyboard focus.
/// Does nothing if the token is empty.
void activate(QWidget& window, const ActivationToken& token);

} // namespace tarnwell
