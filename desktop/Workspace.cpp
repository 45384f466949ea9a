// SPDX-License-Identifier: MIT
#include "desktop/Workspace.h"

#include "desktop/ApplicationLauncher.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>
#include <QVariantMap>

#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace tarnwell
{

namespace
{

QUrl urlOf(const FileURL& file)
{
    return QUrl::fromEncoded(QByteArray::fromStdString(file.absoluteString()));
}

QUrl folderOf(const FileURL& file)
{
    const std::string& path = file.path();
    return urlOf(FileURL(path.substr(0, path.rfind('/') + 1)));
}

/// Sends a call on the session bus. Runs `otherwise` if the call fails or there is no bus.
void callOr(const QDBusMessage& call, const std::function<void()>& otherwise)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) { // the watcher of a call that was not sent never finishes
        otherwise();
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, otherwise] {
        if (QDBusPendingReply<>(*watcher).isError())
            otherwise();
        watcher->deleteLater();
    });
}

QDBusMessage showItemsCall(const FileURL& file)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"), QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("ShowItems"));
    const QString startupId;
    call << QStringList(QString::fromStdString(file.absoluteString())) << startupId;
    return call;
}

/// Asks the portal to open the folder of the file and to select the file. The message duplicates the
/// descriptor.
QDBusMessage portalCall(int descriptor)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"), QStringLiteral("org.freedesktop.portal.OpenURI"),
        QStringLiteral("OpenDirectory"));
    const QString parentWindow;
    call << parentWindow << QVariant::fromValue(QDBusUnixFileDescriptor(descriptor)) << QVariantMap();
    return call;
}

void openFolderOf(const FileURL& file)
{
    QDesktopServices::openUrl(folderOf(file));
}

void selectThroughThePortal(const FileURL& file)
{
    const int descriptor = ::open(file.path().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) { // Qt can crash when it sends an invalid descriptor
        openFolderOf(file);
        return;
    }
    callOr(portalCall(descriptor), [file] { openFolderOf(file); });
    ::close(descriptor);
}

} // namespace

void activateFileViewerSelecting(const FileURL& file)
{
    callOr(showItemsCall(file), [file] { selectThroughThePortal(file); });
}

void openFileWithApplication(const FileURL& file, const QString& applicationName)
{
    // The default application can be this program, which opens videos too but does not play them.
    const std::string ownId = QGuiApplication::desktopFileName().toStdString() + ".desktop";
    if (!launchApplication(applicationName.toStdString(), file.path())
        && !launchOtherThanOwn(ownId, file.path()))
        QDesktopServices::openUrl(urlOf(file));
}

} // namespace tarnwell
