// SPDX-License-Identifier: MIT
#include "app/Application.h"

#include "app/AppDelegate.h"
#include "desktop/FileUri.h"
#include "desktop/InputBlocker.h"
#include "desktop/Panels.h"
#include "platform/FatalError.h"
#include "platform/FileAttributes.h"
#include "platform/FileURL.h"

#include <QApplication>

#include <cstdlib>

namespace tarnwell
{

Application::Application(const ToolContext& tools)
    : m_delegate(std::make_shared<AppDelegate>(m_interface.outlets(), tools, m_mainQueue.queue()))
    , m_closeRequests(
          m_interface.window(), required(m_interface.outlets().sheets), &InputBlocker::exitUnlessActive)
{
    disablePanelSettings();
    m_interface.connectActions(*m_delegate);
    QApplication::setQuitOnLastWindowClosed(m_delegate->applicationShouldTerminateAfterLastWindowClosed());
    QObject::connect(
        qApp, &QCoreApplication::aboutToQuit, m_delegate.get(), &AppDelegate::applicationWillTerminate);
    m_delegate->applicationDidFinishLaunching();
    m_interface.window().show();
}

Application::~Application()
{
    m_delegate->removeStillFolder();
}

void Application::reopen()
{
    const QMainWindow& window = m_interface.window();
    m_delegate->applicationShouldHandleReopen(window.isVisible() && !window.isMinimized());
}

void Application::open(const std::string& uri)
{
    const auto analyze = [this, uri] {
        if (!m_interface.takesActions())
            return;
        const auto path = localPath(QByteArray::fromStdString(uri));
        if (path && isExistingFile(*path))
            m_delegate->analyzeFile(FileURL(*path));
        else
            m_delegate->openFailed();
    };
    QMetaObject::invokeMethod(m_delegate.get(), analyze, Qt::QueuedConnection);
}

void Application::quit()
{
    if (InputBlocker::exitUnlessActive())
        return;
    m_delegate->removeStillFolder();
    std::quick_exit(EXIT_SUCCESS);
}

} // namespace tarnwell
