// SPDX-License-Identifier: MIT
#include "desktop/PortalDialogs.h"

#include "platform/Sandbox.h"

#include <QByteArray>
#include <QDir>
#include <QLibraryInfo>

#include <chrono>
#include <gio/gio.h>
#include <memory>

namespace tarnwell
{

namespace
{

constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";
constexpr const char* portalTheme = "xdgdesktopportal";
constexpr std::chrono::milliseconds longestAnswer(2000);

bool isSelectedHere = false;

struct Unreference {
    void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

bool hasThemePlugin(const char* pattern)
{
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platformthemes"));
    return !plugins.entryList({QString::fromLatin1(pattern)}, QDir::Files).isEmpty();
}

/// Qt has no theme for GNOME: that for GTK 3 does not follow GNOME's dark style.
bool hasDesktopNoTheme()
{
    const QList<QByteArray> desktops = qgetenv("XDG_CURRENT_DESKTOP").split(':');
    return desktops.contains("GNOME")
        || (desktops.contains("KDE") && !hasThemePlugin("KDEPlasmaPlatformTheme*.so"));
}

bool hasPortalFileDialogs()
{
    const std::unique_ptr<GDBusConnection, Unreference> bus(
        g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus)
        return false;
    const std::unique_ptr<GVariant, Unreference> version(
        g_dbus_connection_call_sync(bus.get(), "org.freedesktop.portal.Desktop",
            "/org/freedesktop/portal/desktop", "org.freedesktop.DBus.Properties", "Get",
            g_variant_new("(ss)", "org.freedesktop.portal.FileChooser", "version"), G_VARIANT_TYPE("(v)"),
            G_DBUS_CALL_FLAGS_NONE, static_cast<int>(longestAnswer.count()), nullptr, nullptr));
    return version != nullptr;
}

} // namespace

void selectPortalDialogs()
{
    if (!qEnvironmentVariableIsEmpty(themeVariable) || !hasDesktopNoTheme()
        || !hasThemePlugin("libqxdgdesktopportal.so") || !hasPortalFileDialogs())
        return;
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
