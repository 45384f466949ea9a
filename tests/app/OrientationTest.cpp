// SPDX-License-Identifier: MIT
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QAction>

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

    void expectShown(int quarterTurnsLeft, bool vertically, bool horizontally)
    {
        EXPECT_EQ(shownPicture().convertToFormat(QImage::Format_ARGB32),
            expectedPicture(still(), quarterTurnsLeft, vertically, horizontally));
    }

    void turnLeft() { type(QKeySequence(QStringLiteral("Ctrl+L"))); }
    void turnRight() { type(QKeySequence(QStringLiteral("Ctrl+R"))); }
    void flipVertically() { type(QKeySequence(QStringLiteral("Ctrl+Shift+V"))); }
    void flipHorizontally() { type(QKeySequence(QStringLiteral("Ctrl+Shift+H"))); }
    void reset() { type(QKeySequence(QStringLiteral("Ctrl+0"))); }
};

TEST_F(OrientationTest, oneTurnToTheLeftIsAQuarterTurnCounterclockwise)
{
    turnLeft();
    expectShown(1, false, false);
}

TEST_F(OrientationTest, oneTurnToTheRightIsAQuarterTurnClockwise)
{
    turnRight();
    expectShown(3, false, false);
}

TEST_F(OrientationTest, fourTurnsEitherWayLeadBackToTheStart)
{
    for (int turn = 1; turn <= 4; ++turn) {
        turnLeft();
        expectShown(turn % 4, false, false);
    }
    for (int turn = 1; turn <= 4; ++turn) {
        turnRight();
        expectShown((4 - turn) % 4, false, false);
    }
}

TEST_F(OrientationTest, aTurnEachWayAndAFlipTwiceCancelOut)
{
    turnLeft();
    turnRight();
    flipVertically();
    flipVertically();
    flipHorizontally();
    flipHorizontally();
    expectShown(0, false, false);
}

TEST_F(OrientationTest, mirrorsActOnThePictureAsItIsTurned)
{
    flipHorizontally();
    expectShown(0, false, true);
    turnLeft();
    expectShown(1, false, true);
    flipVertically();
    expectShown(1, true, true);
    turnLeft();
    expectShown(2, true, true);
}

TEST_F(OrientationTest, bothMirrorsShowWhatAHalfTurnShows)
{
    flipVertically();
    flipHorizontally();
    expectShown(2, false, false);
}

TEST_F(OrientationTest, aRefreshWithoutTurnOrMirrorIsDrawnAnewAndLooksTheSame)
{
    const QImage extracted = shownPicture();
    flipVertically();
    flipVertically();
    EXPECT_NE(shownPicture().cacheKey(), extracted.cacheKey());
    expectShown(0, false, false);
}

TEST_F(OrientationTest, resetShowsTheStillAsItWasExtractedWithoutARedraw)
{
    turnLeft();
    flipHorizontally();
    reset();
    const QImage afterFirst = shownPicture();
    expectShown(0, false, false);
    turnRight();
    flipVertically();
    reset();
    // A redraw would have made another picture.
    EXPECT_EQ(shownPicture().cacheKey(), afterFirst.cacheKey());
    turnLeft();
    expectShown(1, false, false);
}

TEST_F(OrientationTest, theViewAndThePreviewsStartFromTwoSeparatePictures)
{
    const QImage opened = shownPicture();
    reset();
    EXPECT_EQ(shownPicture(), opened);
    EXPECT_NE(shownPicture().cacheKey(), opened.cacheKey());
}

TEST_F(OrientationTest, theToolbarDoesWhatTheShortcutsDo)
{
    clickToolBar("rotateLeftBTN");
    expectShown(1, false, false);
    clickToolBar("flipVerticallyBTN");
    expectShown(1, true, false);
    clickToolBar("flipHorizontallyBTN");
    expectShown(1, true, true);
    clickToolBar("rotateRightBTN");
    expectShown(0, true, true);
    clickToolBar("resetBTN");
    expectShown(0, false, false);
}

} // namespace tarnwell::test
