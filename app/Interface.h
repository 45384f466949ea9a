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

/// The main window and its sheets, as the interface files define them. Owns every element; a controller gets
/// references.
class Interface
{
public:
    Interface();
    ~Interface();

    QMainWindow& window() { return m_window; }

    Outlets outlets();

    /// From now on every control tells `delegate` what the user does, unless a sheet is up or the program is
    /// at work: assistive tools and global menus reach a control by other ways than events. Controls of an
    /// interface that outlives the delegate tell nobody.
    void connectActions(AppDelegate& delegate);

private:
    bool takesActions() const;
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
