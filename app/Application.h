// SPDX-License-Identifier: MIT
#pragma once

#include "app/Interface.h"
#include "desktop/MainQueue.h"
#include "platform/ToolContext.h"

#include <memory>

namespace tarnwell
{

class AppDelegate;

/// The window, its controller and what connects them. Needs a QApplication around it; what it leaves running
/// when it goes is an encoder at work.
class Application
{
public:
    /// Shows the window.
    explicit Application(const ToolContext& tools);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The user has started the program again.
    void reopen();

    Interface& interface() { return m_interface; }
    AppDelegate& delegate() { return *m_delegate; }

private:
    MainQueue m_mainQueue;
    Interface m_interface;
    std::shared_ptr<AppDelegate> m_delegate;
};

} // namespace tarnwell
