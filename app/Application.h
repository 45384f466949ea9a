// SPDX-License-Identifier: MIT
#pragma once

#include "app/Interface.h"
#include "desktop/CloseRequests.h"
#include "desktop/MainQueue.h"
#include "platform/ToolContext.h"

#include <memory>
#include <string>

namespace tarnwell
{

class AppDelegate;

/// The window, its controller and the connections between them. Needs a QApplication that outlives it. The
/// destructor does not end a running encoder.
class Application
{
public:
    /// Shows the window.
    explicit Application(const ToolContext& tools);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Brings the window forward. Called when the user starts the program again.
    void reopen();

    /// Analyses the file with that URI as if it were dropped on the window, after control returns to the
    /// event loop. Does nothing if a sheet is shown or a tool runs then. Shows an alert if the URI has no path
    /// on this machine, or the path no file that the program can see: the sandbox hides files that are not
    /// granted.
    void open(const std::string& uri);

    /// Ends the program as the menu item does. While a tool analyses a file, ends it at once: the analysis,
    /// unlike an export, is of no use to anyone then.
    void quit();

    Interface& interface() { return m_interface; }
    AppDelegate& delegate() { return *m_delegate; }

private:
    MainQueue m_mainQueue;
    Interface m_interface;
    std::shared_ptr<AppDelegate> m_delegate;
    CloseRequests m_closeRequests;
};

} // namespace tarnwell
