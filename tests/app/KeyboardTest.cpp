// SPDX-License-Identifier: MIT
// The window without a pointer: the keyboard focus, Tab, the arrows and Space.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/RealInput.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>

#include <string>
#include <vector>

namespace tarnwell::test
{

class KeyboardTest : public FakeToolsTest
{
protected:
    /// The accessible name of the control that has the keyboard focus.
    static std::string owner()
    {
        waitForAnyKeyboard(); // it may move once more after a sheet has gone
        const QWidget* widget = QApplication::focusWidget();
        if (const auto* button = qobject_cast<const QToolButton*>(widget))
            return button->text().toStdString();
        return widget == nullptr ? std::string() : widget->accessibleName().toStdString();
    }

    /// The controls that get the keyboard focus by repeated presses of the key, until the first one again.
    static std::vector<std::string> round(const std::string& key)
    {
        std::vector<std::string> owners{owner()};
        constexpr std::size_t more = 12; // than there are controls
        while (owners.size() < more) {
            realKeys(key);
            if (owner() == owners.front())
                break;
            owners.push_back(owner());
        }
        return owners;
    }

    void goTo(const std::string& name)
    {
        const auto owners = round("Tab");
        const auto steps = std::find(owners.begin(), owners.end(), name) - owners.begin();
        ASSERT_LT(steps, std::ssize(owners)) << "no " << name;
        for (auto step = steps; step > 0; --step)
            realKeys("Tab");
        ASSERT_EQ(owner(), name);
    }

    /// Whether the edge of the control with the keyboard focus has the highlight colour.
    static bool isOwnerMarked()
    {
        waitForAnyKeyboard();
        QWidget* widget = QApplication::focusWidget();
        const QImage picture = widget->grab().toImage();
        return picture.pixelColor(picture.width() / 2, 0) == widget->palette().color(QPalette::Highlight);
    }

    static const std::vector<std::string> everyControl;
};

const std::vector<std::string> KeyboardTest::everyControl = {"Video Preview", "Open", "Save", "Rotate Left",
    "Rotate Right", "Flip Vertically", "Flip Horizontally", "Reset", "Help"};

TEST_F(KeyboardTest, tabGoesThroughWhatCanBeUsedInTheOrderOfTheScreen)
{
    start();
    EXPECT_EQ(owner(), "Video Preview");
    EXPECT_EQ(round("Tab"), (std::vector<std::string>{"Video Preview", "Open", "Help"}));
    openVideo();
    EXPECT_EQ(round("Tab"), everyControl);
    std::vector<std::string> backwards(everyControl.rbegin(), everyControl.rend());
    std::rotate(backwards.begin(), backwards.end() - 1, backwards.end());
    EXPECT_EQ(round("shift+Tab"), backwards);
}

TEST_F(KeyboardTest, theArrowsGoAlongTheToolbar)
{
    start();
    openVideo();
    goTo("Rotate Left");
    realKeys("Right");
    EXPECT_EQ(owner(), "Rotate Right");
    realKeys("Left");
    realKeys("Left");
    EXPECT_EQ(owner(), "Save");
}

TEST_F(KeyboardTest, itsPlaceIsMarkedOnEveryControl)
{
    start();
    openVideo();
    EXPECT_FALSE(isOwnerMarked()) << "before the first key";
    for (std::size_t control = 0; control < everyControl.size(); ++control) {
        realKeys("Tab");
        EXPECT_TRUE(isOwnerMarked()) << owner();
    }
}

TEST_F(KeyboardTest, spacePressesTheButtonThatHasIt)
{
    start();
    openVideo();
    goTo("Rotate Left");
    realKeys("space");
    EXPECT_EQ(
        shownPicture().convertToFormat(QImage::Format_ARGB32), expectedPicture(still(), 1, false, false));
    EXPECT_EQ(owner(), "Rotate Left");
}

TEST_F(KeyboardTest, aClickOnTheToolbarLeavesItWhereItWas)
{
    start();
    openVideo();
    realClick(*find<QToolBar>("toolBar").widgetForAction(&action("rotateLeftBTN")));
    EXPECT_EQ(shownPicture().size(), stillSize.transposed());
    EXPECT_EQ(owner(), "Video Preview");
}

TEST_F(KeyboardTest, comesBackToItsPlaceAfterASheet)
{
    start();
    goTo("Help");
    realKeys("space");
    auto& help = find<QDialog>("helpWindow");
    ASSERT_TRUE(waitUntil([&help] { return help.isVisible(); }));
    waitForKeyboard(help);
    realKeys("Return");
    ASSERT_TRUE(waitUntil([&help] { return !help.isVisible(); }));
    waitForKeyboard(window());
    EXPECT_EQ(owner(), "Help");
}

TEST_F(KeyboardTest, theMenusOpenByKeys)
{
    start();
    for (const char* keys : {"F10", "alt+f"}) {
        SCOPED_TRACE(keys);
        realKeys(keys);
        EXPECT_TRUE(find<QMenu>("fileMenu").isVisible());
        for (const char* next : {"orientationMenu", "helpMenu"}) {
            realKeys("Right");
            EXPECT_TRUE(find<QMenu>(next).isVisible());
        }
        realKeys("Escape");
        realKeys("Escape");
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        EXPECT_EQ(owner(), "Video Preview");
    }
}

} // namespace tarnwell::test
