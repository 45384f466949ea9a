// SPDX-License-Identifier: MIT
#include "desktop/ColorScheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QPalette>

#include <chrono>

namespace tarnwell
{

namespace
{

constexpr std::chrono::milliseconds longestRead(1000);

// The values of the setting; 0 is no preference.
constexpr uint preferDark = 1;
constexpr uint preferLight = 2;

QString portalName()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString portalPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QString settingsInterface()
{
    return QStringLiteral("org.freedesktop.portal.Settings");
}

QString settingGroup()
{
    return QStringLiteral("org.freedesktop.appearance");
}

QString settingKey()
{
    return QStringLiteral("color-scheme");
}

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

/// The colours of Qt's Fusion style.
QPalette makePalette(bool isDarkPalette)
{
    const QColor window = isDarkPalette ? QColor(50, 50, 50) : QColor(239, 239, 239);
    const QColor text = isDarkPalette ? QColor(240, 240, 240) : QColor(Qt::black);
    const QColor base = isDarkPalette ? QColor(36, 36, 36) : QColor(Qt::white);
    const QColor disabled = isDarkPalette ? QColor(140, 140, 140) : QColor(Qt::gray);
    QPalette palette(text, window, window.lighter(150), window.darker(150), window.darker(120), text,
        QColor(Qt::white), base, window);
    palette.setColor(QPalette::AlternateBase, window.lighter(110));
    palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, isDarkPalette ? QColor(110, 180, 240) : QColor(0, 87, 174));
    palette.setColor(QPalette::PlaceholderText, disabled);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabled);
    return palette;
}

void apply(uint setting)
{
    QApplication::setPalette(QPalette()); // Qt's own for this desktop
    const bool isQtDark = isDark(QApplication::palette());
    if ((setting == preferDark && !isQtDark) || (setting == preferLight && isQtDark))
        QApplication::setPalette(makePalette(setting == preferDark));
}

/// The portal's Read wraps the value in two variants.
void applyReply(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return;
    QVariant value = reply.arguments().first();
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    apply(value.toUInt());
}

} // namespace

ColorScheme::ColorScheme()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(portalName(), portalPath(), settingsInterface(), QStringLiteral("SettingChanged"), this,
        SLOT(settingChanged(QDBusMessage)));
    readSetting();
}

void ColorScheme::readSetting()
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    QDBusMessage call = QDBusMessage::createMethodCall(
        portalName(), portalPath(), settingsInterface(), QStringLiteral("Read"));
    call << settingGroup() << settingKey();
    if (bus.interface()->isServiceRegistered(portalName())) {
        applyReply(bus.call(call, QDBus::Block, static_cast<int>(longestRead.count())));
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [](QDBusPendingCallWatcher* finished) {
        applyReply(finished->reply());
        finished->deleteLater();
    });
}

void ColorScheme::settingChanged(const QDBusMessage& signal)
{
    const QVariantList arguments = signal.arguments(); // group, key, value
    if (arguments.size() == 3 && arguments[0] == settingGroup() && arguments[1] == settingKey())
        apply(arguments[2].value<QDBusVariant>().variant().toUInt());
}

} // namespace tarnwell
