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
}

/// The main window and its sheets, as the interface files define them. Owns every element; a controller gets
/// references.
class Interface
{
public:
    Interface();
    ~Interface();

    QMainWindow& window() { return m_window; }

    Outlets outlets();

    /// From now on every control tells `delegate` what the user does. It must outlive the interface.
    void connectActions(AppDelegate& delegate);

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
