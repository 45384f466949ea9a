// SPDX-License-Identifier: MIT
// The preview equals a frame of the transcoded file: with real video, in the real window. TranscodeListTest
// and PictureTest test the filters and the drawing of every state, RealToolsTest the rotation flags.
#include "orientation/OrientationState.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QAction>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

// Encoding and the still's own compression leave a little noise.
constexpr double fewGreyLevels = 4;

using States = std::vector<OrientationState>;

States allStates()
{
    States states;
    for (const std::int64_t position : {1, 2, 3, 4}) {
        for (const bool vertical : {false, true}) {
            for (const bool horizontal : {false, true})
                states.push_back({position, vertical, horizontal});
        }
    }
    return states;
}

/// Each position once, and each pair of mirrors once.
States fewStates()
{
    return {{1, false, false}, {2, true, false}, {3, false, true}, {4, true, true}};
}

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

    void openClip(SampleVideo video, int rotationFlag)
    {
        video.seconds = seconds;
        video.soundCodec = "";
        makeSampleVideo(folder() + "unmarked.mp4", video);
        if (rotationFlag != 0)
            setRotationFlag(folder() + "unmarked.mp4", rotationFlag, clip());
        else
            std::filesystem::rename(folder() + "unmarked.mp4", clip());
        start();
        openByPanel(clip());
        ASSERT_TRUE(waitUntil([this] { return action("saveToolBarBTN").isEnabled(); }));
    }

    void expectStatesToAgree(const States& states, const SampleVideo& video, int rotationFlag = 0)
    {
        openClip(video, rotationFlag);
        std::vector<QImage> shown;
        std::vector<std::string> outputs;
        for (const auto& state : states) {
            SCOPED_TRACE(described(state));
            bringTo(state);
            shown.push_back(shownPicture());
            outputs.push_back(folder() + "out" + std::to_string(outputs.size()) + ".mp4");
            transcodeTo(outputs.back(), video.codec == "libx264" && state.vFlipState == state.hFlipState);
        }
        const auto saved = decodedFrames(outputs, seconds / 2.0);
        for (std::size_t index = 0; index < states.size(); ++index) {
            SCOPED_TRACE(described(states[index]));
            EXPECT_LT(meanDifference(shown[index], saved[index]), fewGreyLevels);
            EXPECT_GT(meanDifference(shown[index], saved[index].mirrored(true, false)), fewGreyLevels);
        }
    }

private:
    static constexpr int seconds = 1;

    std::string clip() const { return folder() + "clip.mp4"; }

    static std::string described(const OrientationState& state)
    {
        return "position " + std::to_string(state.positionState) + " vertical "
            + std::to_string(state.vFlipState) + " horizontal " + std::to_string(state.hFlipState);
    }
};

TEST_F(PreviewTest, previewEqualsResultOnALandscapeVideo)
{
    expectStatesToAgree(allStates(), {});
}

TEST_F(PreviewTest, previewEqualsResultOnAPhoneVideoThatItsFlagTurns)
{
    expectStatesToAgree(fewStates(), {}, 270);
}

TEST_F(PreviewTest, previewEqualsResultOnAPortraitVideo)
{
    expectStatesToAgree(fewStates(), {.size = {240, 320}});
}

TEST_F(PreviewTest, previewEqualsResultOnAVideoWithAnOddSize)
{
    expectStatesToAgree(fewStates(), {.size = {321, 241}, .codec = "mpeg4"});
}

} // namespace tarnwell::test
