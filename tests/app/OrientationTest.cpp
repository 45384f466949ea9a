// SPDX-License-Identifier: MIT
#include "orientation/OrientationState.h"
#include "tests/support/FakeToolsTest.h"

#include <QKeySequence>

#include <string>
#include <utility>
#include <vector>

namespace tarnwell::test
{

class OrientationTest : public FakeToolsTest
{
protected:
    void SetUp() override
    {
        start();
        openVideo();
    }

    void expectShown(const OrientationState& state)
    {
        EXPECT_EQ(shownPicture().convertToFormat(QImage::Format_ARGB32),
            expectedPicture(
                still(), static_cast<int>(state.positionState) - 1, state.vFlipState, state.hFlipState));
    }

    void press(const char* shortcut) { type(QKeySequence(QString::fromLatin1(shortcut))); }
};

constexpr const char* left = "Ctrl+L";
constexpr const char* right = "Ctrl+R";
constexpr const char* vertically = "Ctrl+Shift+V";
constexpr const char* horizontally = "Ctrl+Shift+H";
constexpr const char* reset = "Ctrl+0";

struct Step {
    const char* shortcut;
    OrientationState shown;
};

struct Walk {
    const char* name;
    std::vector<Step> steps;
};

void PrintTo(const Walk& walk, std::ostream* stream)
{
    *stream << walk.name;
}

class OrientationWalkTest : public OrientationTest, public testing::WithParamInterface<Walk>
{
};

TEST_P(OrientationWalkTest, showsThePictureAfterEachStep)
{
    for (const auto& [shortcut, shown] : GetParam().steps) {
        SCOPED_TRACE(shortcut);
        press(shortcut);
        expectShown(shown);
    }
}

INSTANTIATE_TEST_SUITE_P(walks, OrientationWalkTest,
    testing::Values(Walk{"fourCounterclockwiseTurns", {{left, {2}}, {left, {3}}, {left, {4}}, {left, {1}}}},
        Walk{"fourClockwiseTurns", {{right, {4}}, {right, {3}}, {right, {2}}, {right, {1}}}},
        Walk{"eachActionAndItsReverse",
            {{left, {2}}, {right, {1}}, {vertically, {1, true, false}}, {vertically, {1}},
                {horizontally, {1, false, true}}, {horizontally, {1}}}},
        Walk{"mirrorsOfTheTurnedPicture",
            {{horizontally, {1, false, true}}, {left, {2, false, true}}, {vertically, {2, true, true}},
                {left, {3, true, true}}}},
        Walk{"bothMirrorsLikeAHalfTurn", {{vertically, {1, true, false}}, {horizontally, {3}}}},
        Walk{"resetAndATurn", {{left, {2}}, {horizontally, {2, false, true}}, {reset, {1}}, {left, {2}}}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(OrientationTest, aRefreshWithoutTurnOrMirrorCreatesANewImageThatLooksTheSame)
{
    const QImage extracted = shownPicture();
    press(vertically);
    press(vertically);
    EXPECT_NE(shownPicture().cacheKey(), extracted.cacheKey());
    expectShown({1});
}

TEST_F(OrientationTest, everyResetShowsTheSecondExtractedImageItself)
{
    const QImage opened = shownPicture();
    press(reset);
    const QImage still = shownPicture();
    EXPECT_EQ(still, opened);
    EXPECT_NE(still.cacheKey(), opened.cacheKey());
    press(right);
    press(vertically);
    press(reset);
    EXPECT_EQ(shownPicture().cacheKey(), still.cacheKey()); // a redraw would create another image
}

TEST_F(OrientationTest, theToolbarWorksLikeTheShortcuts)
{
    const std::pair<const char*, OrientationState> steps[]
        = {{"rotateLeftBTN", {2}}, {"flipVerticallyBTN", {2, true, false}},
            {"flipHorizontallyBTN", {2, true, true}}, {"rotateRightBTN", {1, true, true}}, {"resetBTN", {1}}};
    for (const auto& [name, shown] : steps) {
        SCOPED_TRACE(name);
        clickToolBar(name);
        expectShown(shown);
    }
}

} // namespace tarnwell::test
