// SPDX-License-Identifier: MIT
// The preview equals a frame of the transcoded file: with real video, in the real window, for every state.
#include "orientation/OrientationState.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QAction>

namespace tarnwell::test
{

namespace
{

// Encoding and the still's own compression leave a little noise.
constexpr double fewGreyLevels = 4;

struct Clip {
    const char* name;
    SampleVideo video;
    int rotationFlag;
};

} // namespace

class PreviewTest : public WindowTest
{
protected:
    void bringTo(const OrientationState& state)
    {
        action("resetBTN").trigger();
        for (auto turn = state.positionState; turn > 1; --turn)
            action("rotateLeftBTN").trigger();
        if (state.vFlipState)
            action("flipVerticallyBTN").trigger();
        if (state.hFlipState)
            action("flipHorizontallyBTN").trigger();
    }

    void transcodeTo(const std::string& path, bool hasChoice)
    {
        saveByPanel(path);
        if (hasChoice)
            answer(shownAlert(), "Transcode");
        ASSERT_TRUE(waitUntil([this] { return isAlertShown(); }));
        AlertDialog* result = shownAlert();
        ASSERT_TRUE(result->text().endsWith(QStringLiteral("Successfully!"))) << result->text().toStdString();
        answer(result, "OK");
        waitForKeyboard(window());
    }

    void expectAllStatesToAgree(const Clip& clip)
    {
        makeSampleVideo(folder() + "unmarked.mp4", clip.video);
        setRotationFlag(folder() + "unmarked.mp4", clip.rotationFlag, folder() + "clip.mp4");
        start();
        openByPanel(folder() + "clip.mp4");
        ASSERT_TRUE(waitUntil([this] { return action("saveToolBarBTN").isEnabled(); }));
        for (const int position : {1, 2, 3, 4}) {
            for (const int mirrors : {0, 1, 2, 3})
                expectStateToAgree({position, (mirrors & 1) != 0, (mirrors & 2) != 0}, clip.video);
        }
    }

    void expectStateToAgree(const OrientationState& state, const SampleVideo& video)
    {
        SCOPED_TRACE("position " + std::to_string(state.positionState) + " vertical "
            + std::to_string(state.vFlipState) + " horizontal " + std::to_string(state.hFlipState));
        bringTo(state);
        const QImage shown = shownPicture();
        const std::string output = folder() + "out.mp4";
        std::remove(output.c_str());
        transcodeTo(output, video.codec == "libx264" && state.vFlipState == state.hFlipState);
        const QImage saved = decodedFrame(output, video.seconds / 2.0);
        EXPECT_LT(meanDifference(shown, saved), fewGreyLevels);
        EXPECT_GT(meanDifference(shown, saved.mirrored(true, false)), fewGreyLevels);
    }
};

TEST_F(PreviewTest, previewEqualsResultOnALandscapeVideo)
{
    expectAllStatesToAgree({"landscape", {}, 0});
}

TEST_F(PreviewTest, previewEqualsResultOnAPhoneVideoThatItsFlagTurns)
{
    expectAllStatesToAgree({"portrait by its flag", {}, 270});
}

TEST_F(PreviewTest, previewEqualsResultOnAPortraitVideo)
{
    expectAllStatesToAgree({"portrait", {.size = {240, 320}}, 0});
}

TEST_F(PreviewTest, previewEqualsResultOnAVideoWithAnOddSize)
{
    expectAllStatesToAgree({"odd", {.size = {321, 241}, .codec = "mpeg4"}, 0});
}

} // namespace tarnwell::test
