// SPDX-License-Identifier: MIT
#include "tests/support/WindowTest.h"

#include "app/AppDelegate.h"
#include "desktop/EventLoopWait.h"
#include "desktop/PathText.h"
#include "platform/FileURL.h"
#include "tests/support/Folders.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

#include <algorithm>

namespace tarnwell::test
{

namespace
{

template <typename Dialog>
Dialog* shownDialog()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* dialog = qobject_cast<Dialog*>(widget);
        if (dialog != nullptr && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

/// The buttons of a new dialog have no size before its first layout; a click would miss them.
template <typename Dialog>
bool isLaidOut(const Dialog& dialog)
{
    const auto buttons = dialog.buttons();
    return std::none_of(
        buttons.begin(), buttons.end(), [](const auto* button) { return button->size().isEmpty(); });
}

/// Waits until a dialog of that type is shown and has the keyboard focus.
template <typename Dialog>
Dialog* waitForDialog(const char* awaited, CallSite site)
{
    Dialog* dialog = nullptr;
    const auto isThere = [&dialog] {
        dialog = shownDialog<Dialog>();
        return dialog != nullptr && isLaidOut(*dialog);
    };
    waitFor(awaited, isThere, site);
    waitForKeyboard(*dialog, site);
    return dialog;
}

/// Clicks the button with that text and waits until the dialog is closed.
template <typename Dialog>
void clickButton(Dialog& dialog, const char* buttonText, CallSite site)
{
    const auto buttons = dialog.buttons();
    const auto button = std::find_if(buttons.begin(), buttons.end(),
        [&](const auto* each) { return each->text() == QString::fromLatin1(buttonText); });
    if (button == buttons.end())
        failTest(
            "no button “" + std::string(buttonText) + "” in the alert “" + dialog.text().toStdString() + "”",
            site);
    const QPointer<Dialog> answered = &dialog;
    QTest::mouseClick(*button, Qt::LeftButton);
    waitFor(
        "the end of the alert", [&answered] { return answered.isNull() || !answered->isVisible(); }, site);
}

} // namespace

ToolContext realTools()
{
    return {Bundle(TARNWELL_BUILD_FOLDER "/bin"), waitInEventLoop};
}

void WindowTest::start()
{
    start(realTools());
}

void WindowTest::start(const ToolContext& tools)
{
    m_application = std::make_unique<Application>(ToolContext{tools.bundle, waitInEventLoop});
    waitForKeyboard(window());
}

QMainWindow& WindowTest::window()
{
    return m_application->interface().window();
}

AppDelegate& WindowTest::delegate()
{
    return m_application->delegate();
}

QAction& WindowTest::action(const char* objectName)
{
    return find<QAction>(objectName);
}

QImage WindowTest::shownPicture()
{
    return find<ImageView>("posterFrameIMGV").image();
}

void WindowTest::type(const QKeySequence& keys, CallSite site)
{
    QWidget* sheet = QApplication::activeModalWidget();
    QWidget& target = sheet != nullptr ? *sheet : window();
    waitForKeyboard(target, site);
    QTest::keySequence(&target, keys);
}

void WindowTest::clickToolBar(const char* actionName, CallSite site)
{
    QWidget* button = find<QToolBar>("toolBar", site).widgetForAction(&action(actionName));
    if (button == nullptr)
        failTest(std::string("no button of ") + actionName, site);
    QTest::mouseClick(button, Qt::LeftButton);
}

AlertDialog* WindowTest::shownAlert(CallSite site)
{
    return waitForDialog<AlertDialog>("an alert", site);
}

bool WindowTest::isAlertShown()
{
    return shownDialog<AlertDialog>() != nullptr || shownDialog<QMessageBox>() != nullptr;
}

void WindowTest::answer(AlertDialog* alert, const char* buttonText, CallSite site)
{
    clickButton(*alert, buttonText, site);
}

void WindowTest::answerReplaceQuestion(const char* buttonText, CallSite site)
{
    clickButton(*waitForDialog<QMessageBox>("a question about replacing the file", site), buttonText, site);
}

bool WindowTest::isProgressShown()
{
    return find<QDialog>("progressWindow").isVisible();
}

bool WindowTest::drop(const std::string& path)
{
    QMimeData data;
    data.setData(
        QStringLiteral("text/uri-list"), QByteArray::fromStdString(FileURL(path).absoluteString() + "\r\n"));
    return drop(data);
}

bool WindowTest::drop(const QMimeData& data)
{
    QWidget& view = find<QWidget>("posterFrameIMGV");
    const QPoint centre = view.rect().center();
    QDragEnterEvent enter(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &drop);
    QCoreApplication::sendPostedEvents(
        &view); // the view accepts the drop first and starts the analysis from an event
    return drop.isAccepted();
}

PathPanel* WindowTest::shownPanel(CallSite site)
{
    PathPanel* panel = nullptr;
    const auto isThere = [&panel] {
        panel = dynamic_cast<PathPanel*>(shownDialog<QFileDialog>());
        return panel != nullptr;
    };
    waitFor("a file panel", isThere, site);
    waitForKeyboard(*panel, site);
    return panel;
}

void WindowTest::choose(PathPanel* panel, const std::string& path, CallSite site)
{
    QLineEdit* field = panel->nameField();
    if (field == nullptr)
        failTest("the panel has no name field", site);
    field->setCompleter(nullptr); // its popup would consume the Return key
    field->setText(textOfPath(path));
    const QPointer<QFileDialog> chosen(panel);
    QTest::keyClick(field, Qt::Key_Return);
    const auto isDone = [&] { return chosen.isNull() || !chosen->isVisible() || isAlertShown(); };
    waitFor("the end of the file panel", isDone, site);
}

void WindowTest::openByPanel(const std::string& path, CallSite site)
{
    type(QKeySequence(QStringLiteral("Ctrl+O")), site);
    choose(shownPanel(site), path, site);
}

void WindowTest::saveByPanel(const std::string& path, CallSite site)
{
    type(QKeySequence(QStringLiteral("Ctrl+S")), site);
    choose(shownPanel(site), path, site);
}

} // namespace tarnwell::test
