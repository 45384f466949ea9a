// SPDX-License-Identifier: MIT
#include "tests/desktop/PanelTest.h"

#include "desktop/PathText.h"
#include "tests/support/Files.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileSystemModel>
#include <QGuiApplication>
#include <QLineEdit>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace tarnwell::test
{

PanelTest::PanelTest()
{
    QCoreApplication::instance()->installEventFilter(this);
}

void PanelTest::beginOpen()
{
    beginOpenPanel(m_window, m_sheets, textOfPath(folder()), collect());
    begun();
}

void PanelTest::beginSave(const char* proposedName)
{
    beginSavePanel(m_window, m_sheets, textOfPath(folder()), QString::fromLatin1(proposedName), collect());
    begun();
}

PathHandler PanelTest::collect()
{
    return [this](const Answer& path) {
        EXPECT_FALSE(isPanelUp()) << "the panel is closed before it answers";
        m_answers.push_back(path);
    };
}

void PanelTest::begun()
{
    m_panel = m_window.findChild<PathPanel*>();
    ASSERT_NE(m_panel, nullptr);
    waitForKeyboard(*m_panel);
}

void PanelTest::makeFile(const std::string& name) const
{
    writeFile(folder() + name, "some contents");
    ASSERT_TRUE(exists(folder() + name)) << name;
}

void PanelTest::makeFolder(const std::string& name) const
{
    std::filesystem::create_directory(folder() + name);
}

std::string PanelTest::shownFolder() const
{
    return isPanelUp() ? pathOfText(m_panel->directory().absolutePath()) + "/" : std::string();
}

QLineEdit& PanelTest::nameField()
{
    return *m_panel->nameField();
}

void PanelTest::typeName(const QString& name)
{
    QGuiApplication::clipboard()->setText(name);
    nameField().setFocus();
    realKeys("ctrl+a");
    realKeys("ctrl+v");
    EXPECT_EQ(nameField().text(), name);
}

void PanelTest::enter(const QString& name)
{
    typeName(name);
    realKeys("Return");
}

QAbstractItemView& PanelTest::list()
{
    const auto views = m_panel->findChildren<QAbstractItemView*>();
    const auto showsFiles = [](const QAbstractItemView* view) {
        return view->isVisible() && qobject_cast<QFileSystemModel*>(view->model()) != nullptr;
    };
    const auto found = std::find_if(views.begin(), views.end(), showsFiles);
    if (found == views.end())
        failTest("the panel shows no list of files");
    return **found;
}

QModelIndex PanelTest::listed(const QString& name)
{
    const QModelIndex root = list().rootIndex();
    for (int row = 0; row < list().model()->rowCount(root); ++row) {
        const QModelIndex index = list().model()->index(row, 0, root);
        if (index.data().toString() == name)
            return index;
    }
    return {};
}

QRect PanelTest::placeInList(const QString& name)
{
    QRect place;
    // The list is read and sorted little by little; a place that stays the same for a while is the final one.
    EXPECT_TRUE(waitUntil([&] {
        const QRect earlier = std::exchange(place, list().visualRect(listed(name)));
        return !place.isEmpty() && place == earlier;
    })) << "not listed: "
        << name.toStdString();
    return place;
}

void PanelTest::clickInList(const QString& name)
{
    realClick(*list().viewport(), placeInList(name).center());
    EXPECT_EQ(list().currentIndex().data().toString().toStdString(), name.toStdString());
}

void PanelTest::doubleClickInList(const QString& name)
{
    realDoubleClick(*list().viewport(), placeInList(name).center());
}

QPushButton& PanelTest::acceptButton()
{
    const auto which
        = m_panel->acceptMode() == QFileDialog::AcceptSave ? QDialogButtonBox::Save : QDialogButtonBox::Open;
    return *m_panel->findChild<QDialogButtonBox*>()->button(which);
}

QPushButton& PanelTest::cancelButton()
{
    return *m_panel->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel);
}

bool PanelTest::eventFilter(QObject* watched, QEvent* event)
{
    auto* question = qobject_cast<QMessageBox*>(watched);
    // The answer comes from the question's own event loop, which runs as soon as the question is shown.
    if (question != nullptr && event->type() == QEvent::Show)
        QMetaObject::invokeMethod(
            question, [this, question] { answerQuestion(*question); }, Qt::QueuedConnection);
    return false;
}

void PanelTest::answerQuestion(QMessageBox& question)
{
    m_questions.append(question.text() + question.informativeText());
    EXPECT_TRUE(m_nextAnswer) << "unexpected: " << question.text().toStdString();
    waitForKeyboard(question);
    QAbstractButton* button = m_nextAnswer ? question.button(*m_nextAnswer) : nullptr;
    if (button != nullptr)
        realClick(*button);
    else
        question.reject();
    m_nextAnswer.reset();
}

void PanelTest::waitForAnsweredQuestion()
{
    EXPECT_TRUE(waitUntil([this] { return !m_questions.isEmpty() && !m_nextAnswer; })) << "nothing was asked";
    if (isPanelUp())
        waitForKeyboard(*m_panel);
}

void PanelTest::forgetAnswers()
{
    m_answers.clear();
    m_questions.clear();
}

PanelTest::Answer PanelTest::answer()
{
    EXPECT_TRUE(waitUntil([this] { return isAnswered() && m_panel.isNull(); })) << "the panel does not end";
    EXPECT_EQ(m_answers.size(), 1u);
    return m_answers.empty() ? std::nullopt : m_answers.front();
}

} // namespace tarnwell::test
