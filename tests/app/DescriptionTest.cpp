// SPDX-License-Identifier: MIT
// The description of the picture for assistive tools.
#include "app/PictureDescription.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QAction>

#include <utility>
#include <vector>

namespace tarnwell::test
{

TEST(OrientationWordsTest, nameTheTurnAndTheMirrors)
{
    const std::pair<OrientationState, const char*> cases[] = {
        {{1, false, false}, "as it was opened"},
        {{2, false, false}, "turned left"},
        {{3, false, false}, "turned upside down"},
        {{4, false, false}, "turned right"},
        {{1, true, false}, "mirrored vertically"},
        {{1, false, true}, "mirrored horizontally"},
        {{1, true, true}, "mirrored vertically and horizontally"},
        {{4, false, true}, "turned right, mirrored horizontally"},
        {{2, true, true}, "turned left, mirrored vertically and horizontally"},
        {{7, false, false}, "as it was opened"},
    };
    for (const auto& [state, words] : cases)
        EXPECT_EQ(orientationInWords(state).toStdString(), words);
}

class DescriptionTest : public FakeToolsTest
{
protected:
    std::string description()
    {
        return find<QWidget>("posterFrameIMGV").accessibleDescription().toStdString();
    }

    void open(const std::string& name)
    {
        writeFile(folder() + name, "bytes");
        ASSERT_TRUE(drop(folder() + name));
        waitForKeyboard(window());
    }
};

TEST_F(DescriptionTest, isTheInvitationAtFirst)
{
    start();
    EXPECT_EQ(description(), "Drop a video here, or click to choose one (Ctrl+O)");
}

TEST_F(DescriptionTest, followsEveryActionOnThePicture)
{
    start();
    open("clip.mp4");
    EXPECT_EQ(description(), "clip.mp4, as it was opened");
    const std::pair<const char*, const char*> steps[] = {
        {"rotateRightBTN", "clip.mp4, turned right"},
        {"flipHorizontallyBTN", "clip.mp4, turned right, mirrored horizontally"},
        {"rotateRightBTN", "clip.mp4, turned upside down, mirrored horizontally"},
        {"flipVerticallyBTN", "clip.mp4, turned upside down, mirrored vertically and horizontally"},
        {"rotateLeftBTN", "clip.mp4, turned right, mirrored vertically and horizontally"},
        {"resetBTN", "clip.mp4, as it was opened"},
        {"rotateLeftBTN", "clip.mp4, turned left"},
    };
    for (const auto& [name, words] : steps) {
        action(name).trigger();
        EXPECT_EQ(description(), words);
    }
}

TEST_F(DescriptionTest, isOfTheFileThatIsShown)
{
    start();
    open("first.mp4");
    action("rotateLeftBTN").trigger();
    open("second, with 100%.mov");
    EXPECT_EQ(description(), "second, with 100%.mov, as it was opened");
    action("flipVerticallyBTN").trigger();
    tools().setSniffer(sniffing(soundReport()));
    writeFile(folder() + "refused.mp3", "bytes");
    ASSERT_TRUE(drop(folder() + "refused.mp3"));
    EXPECT_EQ(description(), "second, with 100%.mov, mirrored vertically");
    answer(shownAlert(), "OK");
    action("rotateRightBTN").trigger();
    EXPECT_EQ(description(), "second, with 100%.mov, turned right, mirrored vertically");
}

TEST_F(DescriptionTest, aNameThatIsNoTextIsSaidAsFarAsItGoes)
{
    start();
    open("caf\xE9 \xF0\x9F\x8E\xA5.mp4");
    EXPECT_EQ(description(), "caf\xEF\xBF\xBD \xF0\x9F\x8E\xA5.mp4, as it was opened");
}

} // namespace tarnwell::test
