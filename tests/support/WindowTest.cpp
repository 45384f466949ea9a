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
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

#include <algorithm>

namespace tarnwell::test
{

namespace
{

constexpr int longestWait = 60000; // milliseconds; only a broken program takes so long

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

/// A box that is new on the screen may not have given its buttons a size yet; a click would miss them.
bool isLaidOut(const QMessageBox& box)
{
    const auto buttons = box.buttons();
    return std::none_of(
        buttons.begin(), buttons.end(), [](const auto* button) { return button->size().isEmpty(); });
}

constexpr const char* temporaryFolderVariable = "TMPDIR";

} // namespace

OwnTemporaryFolder::OwnTemporaryFolder()
    : m_earlier(qgetenv(temporaryFolderVariable))
{
    qputenv(temporaryFolderVariable, QByteArray::fromStdString(path()));
}

OwnTemporaryFolder::~OwnTemporaryFolder()
{
    if (m_earlier.isNull())
        qunsetenv(temporaryFolderVariable);
    else
        qputenv(temporaryFolderVariable, m_earlier);
}

void waitForKeyboard(QWidget& widget)
{
    // A window manager that is still busy with the window before forgets a request at times.
    constexpr int patience = 2000; // milliseconds
    ASSERT_TRUE(waitUntil([&] {
        widget.activateWindow();
        return QTest::qWaitForWindowActive(&widget, patience);
    }));
}

bool isOnTop(const QWidget& window)
{
    return QApplication::topLevelAt(window.geometry().center()) == &window;
}

bool waitUntil(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, longestWait);
}

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

void WindowTest::type(const QKeySequence& keys)
{
    ASSERT_TRUE(waitUntil([] { return QApplication::activeWindow() != nullptr; }));
    QTest::keySequence(QApplication::activeWindow(), keys);
}

void WindowTest::clickToolBar(const char* actionName)
{
    QWidget* button = find<QToolBar>("toolBar").widgetForAction(&action(actionName));
    ASSERT_NE(button, nullptr) << actionName;
    QTest::mouseClick(button, Qt::LeftButton);
}

QMessageBox* WindowTest::shownAlert()
{
    EXPECT_TRUE(waitUntil([] { return shownDialog<QMessageBox>() != nullptr; })) << "no alert came";
    auto* alert = shownDialog<QMessageBox>();
    if (alert != nullptr) {
        waitForKeyboard(*alert);
        EXPECT_TRUE(waitUntil([alert] { return isLaidOut(*alert); }));
    }
    return alert;
}

bool WindowTest::isAlertShown()
{
    return shownDialog<QMessageBox>() != nullptr;
}

void WindowTest::answer(QMessageBox* alert, const char* buttonText)
{
    ASSERT_NE(alert, nullptr);
    for (QAbstractButton* button : alert->buttons()) {
        if (button->text() == QString::fromLatin1(buttonText)) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    ADD_FAILURE() << "no button " << buttonText;
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
    QCoreApplication::sendPostedEvents(&view); // the answer comes first, the work after it
    return drop.isAccepted();
}

QFileDialog* WindowTest::shownPanel()
{
    EXPECT_TRUE(waitUntil([] { return shownDialog<QFileDialog>() != nullptr; })) << "no panel came";
    auto* panel = shownDialog<QFileDialog>();
    if (panel != nullptr)
        waitForKeyboard(*panel);
    return panel;
}

void WindowTest::choose(QFileDialog* panel, const std::string& path)
{
    ASSERT_NE(panel, nullptr);
    auto* field = panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    ASSERT_NE(field, nullptr);
    field->setText(textOfPath(path));
    QTest::keyClick(field, Qt::Key_Return);
}

void WindowTest::openByPanel(const std::string& path)
{
    type(QKeySequence(QStringLiteral("Ctrl+O")));
    choose(shownPanel(), path);
    // The name field's list of completions may take the first Return.
    if (auto* panel = shownDialog<QFileDialog>())
        choose(panel, path);
}

void WindowTest::saveByPanel(const std::string& path)
{
    type(QKeySequence(QStringLiteral("Ctrl+S")));
    choose(shownPanel(), path);
    // As above; but where the panel asks a question, the answer is the test's.
    auto* panel = shownDialog<QFileDialog>();
    if (panel != nullptr && !isAlertShown())
        choose(panel, path);
}

} // namespace tarnwell::test
