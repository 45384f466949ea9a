// SPDX-License-Identifier: MIT
#include "desktop/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

#include <chrono>

namespace tarnwell
{

namespace
{

constexpr std::chrono::seconds longestAnswer(2);

QString serviceName()
{
    return QStringLiteral("org.tarnwell.Tarnwell");
}

QString objectPath()
{
    return QStringLiteral("/org/tarnwell/Tarnwell");
}

bool activateOwner(const QDBusConnection& bus, const ActivationToken& token)
{
    QDBusMessage call = QDBusMessage::createMethodCall(serviceName(), objectPath(),
        QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    call << token.platformData();
    const auto timeout = std::chrono::duration_cast<std::chrono::milliseconds>(longestAnswer);
    return bus.call(call, QDBus::Block, static_cast<int>(timeout.count())).type()
        == QDBusMessage::ReplyMessage;
}

} // namespace

SingleInstance::SingleInstance(Reopen reopen)
    : m_reopen(std::move(reopen))
{
}

SingleInstance::Role SingleInstance::claim(const ActivationToken& token)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return Role::First;
    bus.registerObject(objectPath(), this, QDBusConnection::ExportAllSlots);
    if (bus.registerService(serviceName()))
        return Role::First;
    // An owner that does not reply, or is another program, must not prevent the start.
    return activateOwner(bus, token) ? Role::Later : Role::First;
}

void SingleInstance::Activate(const QVariantMap& platformData)
{
    m_reopen(ActivationToken::fromPlatformData(platformData), std::nullopt);
}

void SingleInstance::Open(const QStringList& uris, const QVariantMap& platformData)
{
    m_reopen(ActivationToken::fromPlatformData(platformData),
        uris.isEmpty() ? std::nullopt : std::optional(uris.first().toStdString()));
}

void SingleInstance::ActivateAction(
    const QString& /*name*/, const QVariantList& /*parameter*/, const QVariantMap& /*platformData*/)
{
}

} // namespace tarnwell
