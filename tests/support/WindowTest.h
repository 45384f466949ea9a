// SPDX-License-Identifier: MIT
#pragma once

#include "app/Application.h"
#include "desktop/AlertDialog.h"
#include "desktop/PathPanel.h"
#include "platform/ToolContext.h"
#include "tests/support/Keyboard.h"
#include "tests/support/OwnTemporaryFolder.h"
#include "tests/support/Waiting.h"

#include <QString>

#include <gtest/gtest.h>

#include <memory>
#include <string>

class QAction;
class QMimeData;

namespace tarnwell::test
{

/// The real window of the program with tools that the test chooses, operated by object names, keys and
/// clicks. A function that does not find an element, or exceeds the limit of a wait, fails and ends the test.
class WindowTest : public testing::Test
{
protected:
    /// Shows the window and waits until it has the keyboard focus. Uses the real tools of the build tree by
    /// default.
    void start();
    void start(const ToolContext& tools);

    /// The test's folder, with a trailing "/".
    const std::string& folder() const { return m_folder.path(); }

    /// The temporary folder that the program uses in this test, without a trailing slash.
    std::string ownTemporaryFolder() const { return m_temporary.path(); }

    Application& application() { return *m_application; }
    QMainWindow& window();
    AppDelegate& delegate();

    /// The element with that object name in the window or one of its sheets.
    template <typename Element>
    Element& find(const char* objectName, CallSite site = {})
    {
        auto* element = window().findChild<Element*>(QString::fromLatin1(objectName));
        if (element == nullptr)
            failTest(std::string("no ") + objectName, site);
        return *element;
    }

    QAction& action(const char* objectName);
    QImage shownPicture();

    /// Types a shortcut into the topmost sheet, or into the window if there is none, after it has received
    /// the keyboard focus.
    void type(const QKeySequence& keys, CallSite site = {});

    /// Clicks the action's button in the toolbar.
    void clickToolBar(const char* actionName, CallSite site = {});

    /// Waits for an alert with the keyboard focus. Never null.
    AlertDialog* shownAlert(CallSite site = {});
    /// Whether an alert, or a question of a file panel, is on the screen now.
    bool isAlertShown();
    /// Clicks the button with that text and waits until the alert is closed.
    void answer(AlertDialog* alert, const char* buttonText, CallSite site = {});
    /// The same for a save panel's question about replacing the file. Waits for the question first.
    void answerReplaceQuestion(const char* buttonText, CallSite site = {});

    bool isProgressShown();

    /// Drops the file on the picture area, waits for its analysis, and returns whether it was accepted.
    bool drop(const std::string& path);
    bool drop(const QMimeData& data);

    /// Opens the file with the menu's shortcut and the panel.
    void openByPanel(const std::string& path, CallSite site = {});
    /// Saves with the menu's shortcut and the panel; returns when the panel is closed or asks a question.
    void saveByPanel(const std::string& path, CallSite site = {});
    /// Waits for a file panel with the keyboard focus. Never null.
    PathPanel* shownPanel(CallSite site = {});
    /// Enters the path in the panel's name field, presses Return and waits until the panel is closed or asks
    /// a question.
    void choose(PathPanel* panel, const std::string& path, CallSite site = {});

private:
    OwnTemporaryFolder m_temporary;
    TemporaryDirectory m_folder;
    std::unique_ptr<Application> m_application;
};

/// The real tools of the build tree, found with the program's own rules.
ToolContext realTools();

} // namespace tarnwell::test
