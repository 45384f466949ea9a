// SPDX-License-Identifier: MIT
#pragma once

#include "app/Outlets.h"
#include "desktop/Sheet.h"

#include <QMainWindow>

#include <memory>

namespace tarnwell
{

class AppDelegate;

namespace Ui
{
class HelpSheet;
class MainWindow;
class ProgressSheet;
} // namespace Ui

/// The main window and its sheets, as the interface files define them. Owns every element; the controller
/// holds references.
class Interface
{
public:
    Interface();
    ~Interface();

    QMainWindow& window() { return m_window; }

    Outlets outlets();

    /// Connects every control to `delegate`. Actions are ignored while a sheet is shown or input is blocked:
    /// assistive programs and global menus trigger a control without input events. The destructor of the
    /// delegate disconnects the controls.
    void connectActions(AppDelegate& delegate);

    /// Whether no sheet is shown or waits, and input is not blocked.
    bool takesActions() const;

private:
    void setUpWindow();
    void setUpSheets();
    void setUpToolBar();

    QMainWindow m_window;
    Sheet m_progressWindow;
    Sheet m_helpWindow;
    SheetQueue m_sheets;
    std::unique_ptr<Ui::MainWindow> m_main;
    std::unique_ptr<Ui::ProgressSheet> m_progress;
    std::unique_ptr<Ui::HelpSheet> m_help;
};

} // namespace tarnwell
