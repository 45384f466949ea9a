// SPDX-License-Identifier: MIT
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/RealInput.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

namespace tarnwell::test
{

class ControllerTest : public FakeToolsTest
{
};

TEST_F(ControllerTest, atTheStartTheSixEditingControlsAreOffAndTheOthersOn)
{
    start();
    for (const char* control : editingControls)
        EXPECT_FALSE(action(control).isEnabled()) << control;
    for (const char* control :
        {"openMenuBTN", "openToolBarBTN", "saveMenuBTN", "helpMenuBTN", "helpBTN", "quitMenuBTN"})
        EXPECT_TRUE(action(control).isEnabled()) << control;
    EXPECT_TRUE(shownPicture().isNull());
    EXPECT_FALSE(exists(folder() + "probed"));
}

TEST_F(ControllerTest, theWindowHasTheProgramsIcon)
{
    start();
    EXPECT_TRUE(waitUntil([this] { return !window().windowIcon().isNull(); }));
    EXPECT_FALSE(window().windowIcon().pixmap(QSize(32, 32)).isNull());
}

TEST_F(ControllerTest, controlsHaveTheirDocumentedNamesAndShortcuts)
{
    const std::tuple<const char*, const char*, const char*> controls[] = {
        {"openMenuBTN", "Open", "Ctrl+O"},
        {"openToolBarBTN", "Open", ""},
        {"saveMenuBTN", "Save", "Ctrl+S"},
        {"saveToolBarBTN", "Save", ""},
        {"rotateLeftBTN", "Rotate Left", "Ctrl+L"},
        {"rotateRightBTN", "Rotate Right", "Ctrl+R"},
        {"resetBTN", "Reset", "Ctrl+0"},
        {"flipVerticallyBTN", "Flip Vertically", "Ctrl+Shift+V"},
        {"flipHorizontallyBTN", "Flip Horizontally", "Ctrl+Shift+H"},
        {"helpMenuBTN", "Help", "F1"},
        {"helpBTN", "Help", ""},
        {"quitMenuBTN", "Quit", "Ctrl+Q"},
    };
    start();
    for (const auto& [objectName, name, shortcut] : controls) {
        SCOPED_TRACE(objectName);
        EXPECT_EQ(action(objectName).text().remove(QLatin1Char('&')).toStdString(), name);
        EXPECT_EQ(action(objectName).shortcut(), QKeySequence(QString::fromLatin1(shortcut)));
    }
    EXPECT_EQ(window().windowTitle(), QStringLiteral("Tarnwell"));
    EXPECT_EQ(find<QWidget>("posterFrameIMGV").accessibleName(), QStringLiteral("Video Preview"));
    EXPECT_EQ(find<QWidget>("progressTitle").accessibleName(), QStringLiteral("Progress Title"));
    EXPECT_EQ(find<QWidget>("progressBar").accessibleName(), QStringLiteral("Progress"));
    EXPECT_EQ(find<QWidget>("progressCancel").accessibleName(), QStringLiteral("Cancel"));
}

TEST_F(ControllerTest, aShortcutOfADisabledControlDoesNothing)
{
    start();
    for (const char* keys : {"Ctrl+L", "Ctrl+R", "Ctrl+0", "Ctrl+Shift+V", "Ctrl+Shift+H"})
        type(QKeySequence(QString::fromLatin1(keys)));
    EXPECT_TRUE(shownPicture().isNull());
}

TEST_F(ControllerTest, okAndEscapeEndTheHelpSheetAndChangeNothing)
{
    start();
    openVideo();
    type(QKeySequence(QStringLiteral("Ctrl+L")));
    const QImage before = shownPicture();
    auto& help = find<QDialog>("helpWindow");
    for (const bool byEscape : {false, true, false}) {
        SCOPED_TRACE(byEscape);
        if (byEscape)
            clickToolBar("helpBTN");
        else
            type(QKeySequence(QStringLiteral("F1")));
        ASSERT_TRUE(waitUntil([&help] { return help.isVisible(); }));
        waitForKeyboard(help);
        if (byEscape)
            QTest::keyClick(&help, Qt::Key_Escape);
        else
            QTest::mouseClick(&find<QPushButton>("helpOK"), Qt::LeftButton);
        EXPECT_FALSE(help.isVisible());
        EXPECT_EQ(shownPicture().cacheKey(), before.cacheKey());
        waitForKeyboard(window());
    }
    type(QKeySequence(QStringLiteral("Ctrl+R")));
    EXPECT_EQ(shownPicture().size(), stillSize);
}

TEST_F(ControllerTest, theHelpSheetShowsTheVersion)
{
    start();
    type(QKeySequence(QStringLiteral("F1")));
    const auto& version = find<QLabel>("helpVersion");
    ASSERT_TRUE(waitUntil([&version] { return version.isVisible(); }));
    EXPECT_EQ(version.text(), QStringLiteral("Version " TARNWELL_VERSION));
}

TEST_F(ControllerTest, reopeningShowsAMinimisedOrHiddenWindowWithTheKeyboard)
{
    start();
    window().showMinimized();
    ASSERT_TRUE(waitUntil([this] { return window().isMinimized(); }));
    application().reopen();
    EXPECT_TRUE(waitUntil([this] { return window().isVisible() && !window().isMinimized(); }));
    EXPECT_TRUE(waitUntil([this] { return hasKeyboard(window()); }));
    QWidget other; // the program quits when its last window is hidden
    other.show();
    window().hide();
    application().reopen();
    EXPECT_TRUE(waitUntil([this] { return hasKeyboard(window()); }));
}

TEST_F(ControllerTest, reopeningOnlyRaisesAVisibleWindow)
{
    start();
    QWidget other;
    other.setGeometry(window().geometry());
    other.show();
    waitForKeyboard(other);
    application().reopen();
    EXPECT_TRUE(waitUntil([this] { return isOnTop(window()); }));
    EXPECT_TRUE(hasKeyboard(other));
}

TEST_F(ControllerTest, aHiddenCancelButtonDoesNothing)
{
    start();
    // Assistive programs can press a hidden button. There is no encoder to terminate.
    find<QPushButton>("progressCancel").click();
    openVideo();
    EXPECT_FALSE(shownPicture().isNull());
}

TEST_F(ControllerTest, quitIsIgnoredDuringAnAnalysis)
{
    tools().setSniffer("wait-for " + folder() + "go\n" + sniffing(reportOf({})));
    start();
    bool isAliveAfterwards = false;
    QTimer::singleShot(0, [&] {
        action("quitMenuBTN").trigger();
        // If the program had left the event loop, the tool would never end.
        QTimer::singleShot(0, [&] {
            isAliveAfterwards = isProgressShown();
            writeFile(folder() + "go", "");
        });
    });
    openVideo();
    EXPECT_TRUE(isAliveAfterwards);
}

} // namespace tarnwell::test
