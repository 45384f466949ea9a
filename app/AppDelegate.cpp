// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "app/DragAndDropFileInNSImageView.h"
#include "desktop/InputBlocker.h"
#include "platform/DispatchQueue.h"
#include "platform/FatalError.h"
#include "platform/Process.h"
#include "probe/FileProbe.h"

namespace tarnwell
{

AppDelegate::AppDelegate(Outlets outlets, ToolContext tools, std::shared_ptr<DispatchQueue> mainQueue)
    : m_outlets(std::move(outlets))
    , m_texts(m_outlets)
    , m_tools(std::move(tools))
    , m_mainQueue(std::move(mainQueue))
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    registerForDropNotification();
}

void AppDelegate::applicationWillTerminate()
{
    // Nothing: a running encoder finishes the video that the user asked for.
}

bool AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows)
{
    QWidget& window = required(m_outlets.window);
    if (!hasVisibleWindows) {
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.show();
        window.activateWindow();
    }
    window.raise();
    return true;
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed()
{
    return true;
}

void AppDelegate::registerForDropNotification()
{
    m_dropObservation = NotificationCenter::defaultCenter().addObserver(fileDroppedNotification,
        [this](const Notification& notification) { fileAddedByDragAndDrop(notification); });
    setEditingControlsEnabled(false);
}

void AppDelegate::setEditingControlsEnabled(bool enabled)
{
    for (const auto& control : {m_outlets.saveToolBarBTN, m_outlets.rotateLeftBTN, m_outlets.rotateRightBTN,
             m_outlets.resetBTN, m_outlets.flipVerticallyBTN, m_outlets.flipHorizontallyBTN})
        required(control).setEnabled(enabled);
}

void AppDelegate::helpBTNClicked()
{
    beginSheet(m_outlets.helpWindow);
}

void AppDelegate::okBTNInsideHelpWindowClicked()
{
    endSheet(m_outlets.helpWindow);
}

void AppDelegate::beginSheet(const QPointer<QDialog>& sheet)
{
    static_cast<void>(required(m_outlets.window)); // the queue shows its sheets on this window
    required(m_outlets.sheets).begin(&required(sheet));
}

void AppDelegate::endSheet(const QPointer<QDialog>& sheet)
{
    static_cast<void>(required(m_outlets.window));
    required(m_outlets.sheets).end(&required(sheet));
}

} // namespace tarnwell
