// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Panels.h"
#include "desktop/PathPanel.h"
#include "desktop/SheetQueue.h"
#include "platform/TemporaryDirectory.h"
#include "tests/desktop/ParentWindow.h"

#include <QMessageBox>
#include <QModelIndex>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

class QAbstractItemView;
class QLineEdit;

namespace tarnwell::test
{

/// A file panel on a window, driven by real keys and clicks, in a folder of the test's own.
class PanelTest : public QObject, public testing::Test
{
protected:
    PanelTest();

    using Answer = std::optional<std::string>;

    /// Begins the panel in the test's folder and waits until it has the keyboard.
    void beginOpen();
    void beginSave(const char* proposedName = "Rotated");

    /// The test's own folder, ending in "/".
    const std::string& folder() const { return m_folder.path(); }
    void makeFile(const std::string& name) const;
    void makeFolder(const std::string& name) const;

    PathPanel& panel() { return *m_panel; }
    bool isPanelUp() const { return m_panel != nullptr && m_panel->isVisible(); }
    /// The folder that the panel shows, ending in "/".
    std::string shownFolder() const;
    QLineEdit& nameField();

    /// Replaces the text of the name field through the clipboard.
    void typeName(const QString& name);
    /// Types the name and presses Return. If that closes the panel, returns after it is closed.
    void enter(const QString& name);

    /// Clicks the file in the panel's list, once it is listed.
    void clickInList(const QString& name);
    void doubleClickInList(const QString& name);
    /// The buttons Open or Save, and Cancel.
    QPushButton& acceptButton();
    QPushButton& cancelButton();

    /// The next question of the panel is answered by a click on this button. A question without a set button
    /// fails the test. The panel can ask during the call that accepts it.
    void nextQuestionGets(QMessageBox::StandardButton button) { m_nextAnswer = button; }
    /// Waits until the question is answered and the panel, if it is still shown, has the keyboard again.
    void waitForAnsweredQuestion();
    /// The texts of all questions, with their informative texts.
    const QStringList& questions() const { return m_questions; }

    /// Waits until the panel is closed and returns its answer.
    Answer answer();
    bool isAnswered() const { return !m_answers.empty(); }
    void forgetAnswers();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void begun();
    QModelIndex listed(const QString& name);
    QRect placeInList(const QString& name);
    QAbstractItemView& list();
    void answerQuestion(QMessageBox& question);
    PathHandler collect();

    TemporaryDirectory m_folder;
    ParentWindow m_window;
    SheetQueue m_sheets{m_window};
    QPointer<PathPanel> m_panel;
    std::vector<Answer> m_answers;
    std::optional<QMessageBox::StandardButton> m_nextAnswer;
    QStringList m_questions;
};

} // namespace tarnwell::test
