// SPDX-License-Identifier: MIT
// Shows the first save panel after a file was opened, as in the sandbox. The linker option --wrap (see
// CMakeLists.txt) redirects Sandbox::isInside to this file.
#include "desktop/PanelFolder.h"
#include "desktop/Panels.h"
#include "desktop/SheetQueue.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTimer>
#include <QWidget>

namespace tarnwell::test
{

bool wrappedIsInside() __asm__("__wrap__ZN8tarnwell7Sandbox8isInsideEv");

bool wrappedIsInside()
{
    return true;
}

} // namespace tarnwell::test

int main(int argc, char* argv[])
{
    using namespace tarnwell;
    const QApplication application(argc, argv);
    QWidget window;
    window.show();
    SheetQueue sheets(window);
    PanelFolder folder;
    folder.remember("/run/user/1000/doc/8f1c2d/clip.mp4");
    // Qt shows the portal's dialogs from the moment when the portal has told it their version.
    QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
    QTimer::singleShot(0, &window, [&] {
        beginSavePanel(window, sheets, folder.path(), QStringLiteral("Rotated"), [](const auto&) {});
    });
    return QApplication::exec();
}
