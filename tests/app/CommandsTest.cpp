// SPDX-License-Identifier: MIT
// The ways to a command besides the toolbar: the menu "Orientation", a click on the empty picture area, and
// the ways out of the question about the mode.
#include "tests/app/ExportTest.h"
#include "tests/support/RealInput.h"

#include <QFileDialog>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>
#include <QWindow>

namespace tarnwell::test
{

class OrientationMenuTest : public FakeToolsTest
{
protected:
    QMenu& menu() { return find<QMenu>("orientationMenu"); }

    QList<QAction*> commands()
    {
        QList<QAction*> all = menu().actions();
        all.removeIf([](const QAction* each) { return each->isSeparator(); });
        return all;
    }
};

TEST_F(OrientationMenuTest, containsTheActionsOfTheToolbar)
{
    start();
    QList<QAction*> expected;
    for (const char* name :
        {"rotateLeftBTN", "rotateRightBTN", "flipVerticallyBTN", "flipHorizontallyBTN", "resetBTN"})
        expected << &action(name);
    EXPECT_EQ(commands(), expected);
    for (QAction* command : commands()) {
        EXPECT_FALSE(command->isEnabled()) << command->text().toStdString();
        EXPECT_FALSE(command->shortcut().isEmpty()) << command->text().toStdString();
        const auto* button = qobject_cast<QToolButton*>(find<QToolBar>("toolBar").widgetForAction(command));
        ASSERT_NE(button, nullptr);
        EXPECT_FALSE(button->text().contains(QLatin1Char('&'))) << button->text().toStdString();
    }
    openVideo();
    for (const QAction* command : commands())
        EXPECT_TRUE(command->isEnabled()) << command->text().toStdString();
}

TEST_F(OrientationMenuTest, everyCommandHasAKeyOfItsOwnInTheMenu)
{
    start();
    openVideo();
    struct Row {
        const char* key;
        std::int64_t turnsLeft;
        bool vertically;
        bool horizontally;
    };
    for (const Row& row : {Row{"l", 1, false, false}, Row{"e", 0, false, false}, Row{"r", 3, false, false},
             Row{"v", 3, true, false}, Row{"h", 3, true, true}}) {
        SCOPED_TRACE(row.key);
        realKeys("alt+o");
        ASSERT_TRUE(waitUntil([this] { return menu().isVisible(); }));
        realKeys(row.key);
        EXPECT_FALSE(menu().isVisible());
        EXPECT_EQ(shownPicture().convertToFormat(QImage::Format_ARGB32),
            expectedPicture(still(), static_cast<int>(row.turnsLeft), row.vertically, row.horizontally));
    }
}

class EmptyAreaTest : public FakeToolsTest
{
protected:
    QWidget& view() { return find<QWidget>("posterFrameIMGV"); }

    bool isPanelShown() { return window().findChild<QFileDialog*>() != nullptr; }
};

TEST_F(EmptyAreaTest, aClickOpensThePanel)
{
    start();
    realClick(view());
    EXPECT_EQ(shownPanel()->windowTitle(), QStringLiteral("Open Video"));
    writeFile(folder() + "clip.mp4", "bytes");
    choose(shownPanel(), folder() + "clip.mp4");
    ASSERT_TRUE(waitUntil([this] { return action("saveToolBarBTN").isEnabled(); }));
    waitForKeyboard(window());
    realClick(view()); // shows a picture now
    EXPECT_FALSE(isPanelShown());
}

TEST_F(EmptyAreaTest, aDoubleClickOpensOnePanel)
{
    start();
    for (int click = 0; click < 2; ++click)
        QTest::mouseClick(&view(), Qt::LeftButton); // the second one reaches the view in spite of the panel
    EXPECT_EQ(window().findChildren<QFileDialog*>().size(), 1);
    QTest::keyClick(shownPanel(), Qt::Key_Escape);
    waitForKeyboard(window());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(isPanelShown());
}

TEST_F(EmptyAreaTest, aClickUnderASheetDoesNothing)
{
    start();
    type(QKeySequence(Qt::Key_F1));
    ASSERT_TRUE(waitUntil([this] { return find<QDialog>("helpWindow").isVisible(); }));
    QTest::mouseClick(&view(), Qt::LeftButton); // reaches the view in spite of the sheet
    EXPECT_FALSE(isPanelShown());
}

TEST_F(EmptyAreaTest, aRefusedDropOpensNoPanel)
{
    tools().setSniffer(sniffing(soundReport()));
    start();
    writeFile(folder() + "sound.mp3", "bytes");
    ASSERT_TRUE(drop(folder() + "sound.mp3"));
    answer(shownAlert(), "OK");
    EXPECT_FALSE(isPanelShown());
}

class ModeQuestionTest : public FakeToolsTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(ModeQuestionTest, canBeLeftWithoutAnExport)
{
    start();
    openVideo();
    saveByPanel(folder() + "out.mp4");
    AlertDialog* question = shownAlert();
    tools().setCreator("touch " + folder() + "started\n");
    testing::internal::CaptureStdout();
    if (GetParam() == std::string("Escape"))
        realKeys("Escape");
    else
        question->windowHandle()->close(); // as the window manager requests it
    EXPECT_TRUE(waitUntil([this] { return !isAlertShown(); }));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Something is Wrong!\n");
    EXPECT_FALSE(isProgressShown());
    EXPECT_FALSE(exists(folder() + "started"));
    EXPECT_FALSE(exists(folder() + "out.mp4"));
    waitForKeyboard(window());
    tools().setCreator(stillScript());
    saveByPanel(folder() + "out.mp4");
    answer(shownAlert(), "Transcode");
    answer(shownAlert(), "OK");
    EXPECT_TRUE(exists(folder() + "out.mp4"));
}

INSTANTIATE_TEST_SUITE_P(by, ModeQuestionTest, testing::Values("Escape", "ARequestToClose"),
    [](const auto& way) { return std::string(way.param); });

} // namespace tarnwell::test
