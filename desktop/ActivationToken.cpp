// SPDX-License-Identifier: MIT
#include "desktop/ActivationToken.h"

#include "desktop/X11Activation.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

namespace tarnwell
{

namespace
{

constexpr const char* tokenVariable = "XDG_ACTIVATION_TOKEN";
constexpr const char* startupIdVariable = "DESKTOP_STARTUP_ID";

QString tokenKey()
{
    return QStringLiteral("activation-token");
}

QString startupIdKey()
{
    return QStringLiteral("desktop-startup-id");
}

QString textIn(const QVariantMap& map, const QString& key)
{
    const QVariant value = map.value(key);
    return value.userType() == QMetaType::QString ? value.toString() : QString();
}

/// A blocked window ignores keys, so its sheet gets the focus.
QWidget& receiverOfKeys(QWidget& window)
{
    QWidget* sheet = QApplication::activeModalWidget();
    return sheet != nullptr ? *sheet : window;
}

} // namespace

ActivationToken ActivationToken::fromEnvironment()
{
    return {qEnvironmentVariable(tokenVariable), qEnvironmentVariable(startupIdVariable)};
}

ActivationToken ActivationToken::fromPlatformData(const QVariantMap& platformData)
{
    return {textIn(platformData, tokenKey()), textIn(platformData, startupIdKey())};
}

QVariantMap ActivationToken::platformData() const
{
    QVariantMap map;
    if (!token.isEmpty())
        map.insert(tokenKey(), token);
    if (!startupId.isEmpty())
        map.insert(startupIdKey(), startupId);
    return map;
}

void activate(QWidget& window, const ActivationToken& token)
{
    QWidget& receiver = receiverOfKeys(window);
    if (receiver.windowHandle() == nullptr)
        return;
    const QString& startupId = token.startupId.isEmpty() ? token.token : token.startupId;
    if (startupId.isEmpty() || activateOnX11(*receiver.windowHandle(), startupId) || token.token.isEmpty())
        return;
    // On Wayland, Qt reads the token of an activation from this variable.
    qputenv(tokenVariable, token.token.toLocal8Bit());
    receiver.activateWindow();
    qunsetenv(tokenVariable);
}

} // namespace tarnwell
