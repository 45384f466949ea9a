// SPDX-License-Identifier: MIT
#include "desktop/PortalDialogs.h"

#include "desktop/GioPointer.h"
#include "platform/Sandbox.h"

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QStringList>

#include <algorithm>
#include <chrono>

namespace tarnwell
{

namespace
{

constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";
constexpr const char* portalTheme = "xdgdesktopportal";
constexpr std::chrono::milliseconds longestAnswer(2000);

bool isSelectedHere = false;

/// The names of the installed theme plugins, in lower case.
QStringList installedThemes()
{
    QStringList names;
    const QDir folder(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platformthemes"));
    for (const QFileInfo& plugin : folder.entryInfoList(QDir::Files)) {
        const QJsonObject data = QPluginLoader(plugin.filePath()).metaData();
        const QJsonArray keys
            = data.value(QStringLiteral("MetaData")).toObject().value(QStringLiteral("Keys")).toArray();
        for (const auto& key : keys)
            names.append(key.toString().toLower());
    }
    return names;
}

/// The name by which Qt looks for the theme of a desktop.
QString themeOf(const QString& desktop)
{
    static const QStringList gtkDesktops = {QStringLiteral("x-cinnamon"), QStringLiteral("unity"),
        QStringLiteral("mate"), QStringLiteral("xfce"), QStringLiteral("lxde")};
    return gtkDesktops.contains(desktop) ? QStringLiteral("gtk3") : desktop;
}

/// Whether a theme of the desktop is installed. Qt has none for GNOME: that for GTK 3 does not follow GNOME's
/// dark style.
bool hasDesktopTheme(const QStringList& installed)
{
    const QStringList desktops = QString::fromLocal8Bit(qgetenv("XDG_CURRENT_DESKTOP")).toLower().split(u':');
    return !desktops.contains(QStringLiteral("gnome"))
        && std::any_of(desktops.begin(), desktops.end(),
            [&installed](const QString& desktop) { return installed.contains(themeOf(desktop)); });
}

bool hasPortalFileDialogs()
{
    const ObjectPointer<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus)
        return false;
    const std::unique_ptr<GVariant, void (*)(GVariant*)> version(
        g_dbus_connection_call_sync(bus.get(), "org.freedesktop.portal.Desktop",
            "/org/freedesktop/portal/desktop", "org.freedesktop.DBus.Properties", "Get",
            g_variant_new("(ss)", "org.freedesktop.portal.FileChooser", "version"), G_VARIANT_TYPE("(v)"),
            G_DBUS_CALL_FLAGS_NONE, static_cast<int>(longestAnswer.count()), nullptr, nullptr),
        g_variant_unref);
    return version != nullptr;
}

} // namespace

void selectPortalDialogs()
{
    if (!qEnvironmentVariableIsEmpty(themeVariable))
        return;
    const QStringList installed = installedThemes();
    if (installed.contains(QLatin1String(portalTheme)) && !hasDesktopTheme(installed)
        && hasPortalFileDialogs())
        isSelectedHere = qputenv(themeVariable, portalTheme);
}

void removePortalSelection()
{
    if (isSelectedHere)
        qunsetenv(themeVariable);
}

bool arePortalDialogsUsed()
{
    return isSelectedHere || qgetenv(themeVariable) == portalTheme || Sandbox::isInside();
}

} // namespace tarnwell
