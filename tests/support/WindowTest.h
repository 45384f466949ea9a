// SPDX-License-Identifier: MIT
#pragma once

#include "app/Application.h"
#include "platform/TemporaryDirectory.h"
#include "platform/ToolContext.h"

#include <QByteArray>
#include <QMessageBox>
#include <QString>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

class QAction;
class QFileDialog;
class QMimeData;

namespace tarnwell::test
{

/// Works until the condition holds; false where that takes longer than a test should.
bool waitUntil(const std::function<bool()>& condition);

/// While it lives, the temporary folder of this process is one of its own.
class OwnTemporaryFolder
{
public:
    OwnTemporaryFolder();
    ~OwnTemporaryFolder();
    OwnTemporaryFolder(const OwnTemporaryFolder&) = delete;
    OwnTemporaryFolder& operator=(const OwnTemporaryFolder&) = delete;

    /// Without a closing slash.
    std::string path() const { return m_folder.path().substr(0, m_folder.path().size() - 1); }

private:
    TemporaryDirectory m_folder;
    QByteArray m_earlier;
};

/// Waits until keys that are typed reach the widget's window.
void waitForKeyboard(QWidget& widget);

/// Whether no other window covers the middle of this one.
bool isOnTop(const QWidget& window);

/// The real window of the program with tools of the test's choice, handled as a user would: by names, keys
/// and clicks. Each test has a folder of its own for its files.
class WindowTest : public testing::Test
{
protected:
    /// Shows the window and waits until it has the keyboard. Without tools: the real ones of the build tree.
    void start();
    void start(const ToolContext& tools);

    /// The test's own folder, ending in "/".
    const std::string& folder() const { return m_folder.path(); }

    /// The temporary folder of this test alone, without a closing slash: whatever the program makes lies in
    /// it.
    std::string ownTemporaryFolder() const { return m_temporary.path(); }

    Application& application() { return *m_application; }
    QMainWindow& window();
    AppDelegate& delegate();

    /// The element of that object name in the window or a sheet of it; fails the test where there is none.
    template <typename Element>
    Element& find(const char* objectName)
    {
        auto* element = window().findChild<Element*>(QString::fromLatin1(objectName));
        if (element == nullptr)
            ADD_FAILURE() << "no " << objectName;
        return *element;
    }

    QAction& action(const char* objectName);
    QImage shownPicture();

    /// Types a shortcut into the window that has the keyboard.
    void type(const QKeySequence& keys);

    /// Clicks the toolbar's button for the action.
    void clickToolBar(const char* actionName);

    /// The alert that is on the screen; waits for one. Null, and a failed test, where none comes.
    QMessageBox* shownAlert();
    /// Whether an alert is on the screen now.
    bool isAlertShown();
    /// Clicks the button of that text and waits until the alert has gone.
    void answer(QMessageBox* alert, const char* buttonText);

    bool isProgressShown();

    /// Drops the file on the picture area; returns when the window has dealt with it. Whether the drop was
    /// taken.
    bool drop(const std::string& path);
    bool drop(const QMimeData& data);

    /// Opens by the menu's shortcut and the panel.
    void openByPanel(const std::string& path);
    /// Saves by the menu's shortcut and the panel; returns when the panel has closed.
    void saveByPanel(const std::string& path);
    /// The panel that is on the screen; waits for one.
    QFileDialog* shownPanel();
    /// Types the path into the panel and presses Return.
    void choose(QFileDialog* panel, const std::string& path);

private:
    OwnTemporaryFolder m_temporary;
    TemporaryDirectory m_folder;
    std::unique_ptr<Application> m_application;
};

/// The answer of the process's real tools, as the program itself finds them in the build tree.
ToolContext realTools();

} // namespace tarnwell::test
