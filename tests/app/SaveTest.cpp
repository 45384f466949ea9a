// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>

#include <filesystem>
#include <tuple>

namespace tarnwell::test
{

class SaveTest : public FakeToolsTest
{
protected:
    /// Makes an encoder that records its arguments and creates its output.
    void expectExport()
    {
        tools().setCreator("record " + folder() + "created\n" + "copy " + folder() + "still.jpg\n");
    }

    std::vector<std::string> createdArguments() { return recordedArguments(folder() + "created"); }

    void waitForResult()
    {
        ASSERT_TRUE(waitUntil(
            [this] { return isAlertShown() && shownAlert()->text().endsWith(QStringLiteral("!")); }));
    }

    void finish()
    {
        answer(shownAlert(), "OK");
        waitForKeyboard(window());
    }

    std::string proposedName()
    {
        type(QKeySequence(QStringLiteral("Ctrl+S")));
        PathPanel* panel = shownPanel();
        const std::string name = panel->nameField()->text().toStdString();
        QTest::keyClick(panel, Qt::Key_Escape);
        waitForKeyboard(window());
        return name;
    }

    void press(const std::vector<const char*>& actions)
    {
        action("resetBTN").trigger();
        for (const char* name : actions)
            action(name).trigger();
    }
};

TEST_F(SaveTest, theProposedNameFollowsTheOrientationAndACancelledPanelStartsNothing)
{
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{}, "Processed"},
        {{"flipHorizontallyBTN"}, "Flipped"},
        {{"flipVerticallyBTN"}, "Flipped"},
        {{"rotateRightBTN"}, "Rotated"},
        {{"rotateLeftBTN", "rotateLeftBTN", "flipVerticallyBTN", "flipHorizontallyBTN"},
            "Rotated and Flipped"},
    };
    start();
    openVideo();
    expectExport();
    for (const auto& [actions, name] : cases) {
        press(actions);
        EXPECT_EQ(proposedName(), name);
    }
    EXPECT_FALSE(isAlertShown());
    EXPECT_FALSE(exists(folder() + "created"));
}

TEST_F(SaveTest, theToolbarItemSavesLikeTheMenu)
{
    tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"})));
    start();
    openVideo();
    expectExport();
    clickToolBar("saveToolBarBTN");
    choose(shownPanel(), folder() + "out.mp4");
    finish();
    EXPECT_EQ(createdArguments().back(), folder() + "out.mp4");
}

TEST_F(SaveTest, theInputItselfIsRefusedAndNothingIsExported)
{
    start();
    openVideo();
    expectExport();
    saveByPanel(folder() + "clip.mp4");
    answerReplaceQuestion("&Yes");
    ASSERT_TRUE(waitUntil(
        [this] { return isAlertShown() && shownAlert()->text().startsWith(QStringLiteral("Input")); }));
    AlertDialog* alert = shownAlert();
    EXPECT_EQ(alert->text(), QStringLiteral("Input file name is same as the output file name!"));
    EXPECT_EQ(alert->informativeText(), QStringLiteral("Please specify a different file to save."));
    EXPECT_EQ(alert->alertStyle(), Alert::Style::Informational);
    EXPECT_EQ(alert->buttons().size(), 1);
    finish();
    EXPECT_FALSE(exists(folder() + "created"));
    EXPECT_EQ(contentsOf(folder() + "clip.mp4"), "bytes");
}

TEST_F(SaveTest, theInputInItsDecomposedSpellingIsRefusedToo)
{
    const std::string composed = folder() + "caf\xC3\xA9.mp4";
    start();
    writeFile(composed, "bytes");
    ASSERT_TRUE(drop(composed));
    expectExport();
    saveByPanel(folder() + "cafe\xCC\x81.mp4");
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Input file name is same as the output file name!"));
    finish();
    EXPECT_FALSE(exists(folder() + "created"));
}

TEST_F(SaveTest, theInputUnderAnotherSpellingIsPassedOn)
{
    tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"})));
    start();
    openVideo();
    expectExport();
    std::filesystem::create_directory_symlink(folder(), folder() + "link");
    for (const std::string& output : {folder() + "CLIP.mp4", folder() + "link/clip.mp4"}) {
        const bool isThere = exists(output);
        saveByPanel(output);
        if (isThere)
            answerReplaceQuestion("&Yes");
        waitForResult();
        finish();
        const std::vector<std::string> arguments = createdArguments();
        EXPECT_EQ(arguments.at(1), folder() + "clip.mp4");
        EXPECT_EQ(arguments.back(), output);
    }
}

TEST_F(SaveTest, afterARefusedFileTheInputIsTheRefusedOne)
{
    const std::pair<const char*, std::string> cases[]
        = {{"sound.mp3", soundReport()}, {"clip.vob", reportOf({.codec = "mpeg4"})}};
    start();
    for (const auto& [name, report] : cases) {
        SCOPED_TRACE(name);
        tools().setSniffer(sniffing(reportOf({})));
        tools().setCreator(stillScript());
        openVideo();
        tools().setSniffer(sniffing(report));
        writeFile(folder() + name, "bytes");
        ASSERT_TRUE(drop(folder() + name));
        finish();
        expectExport();
        tools().setSniffer(sniffing(reportOf({})));
        saveByPanel(folder() + name + " saved.mp4");
        EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Processed Successfully!")); // no mode alert
        finish();
        EXPECT_EQ(createdArguments().at(1), folder() + name);
    }
}

TEST_F(SaveTest, theModeAlertSaysWhatTheModesMean)
{
    start();
    openVideo();
    expectExport();
    saveByPanel(folder() + "out.mp4");
    AlertDialog* alert = shownAlert();
    EXPECT_EQ(alert->text(), QStringLiteral("Fix Flag mode Available!"));
    EXPECT_EQ(alert->informativeText(),
        QStringLiteral("\n"
                       "Fix Flag (Quick): Only the orientation flag (rotation tag) in the metadata of the "
                       "video file is changed, so that the video plays fine in iOS, QuickTime & VLC video "
                       "players without any need for transcoding which saves a tremendous amount of "
                       "encoding time for longer videos.\n"
                       "\n"
                       "Transcode (Slow) : The video is rotated permanently frame by frame by re-encoding "
                       "which is compatible with all video players.\n"
                       "\n"));
    EXPECT_EQ(alert->informativeText().size(), 402);
    EXPECT_EQ(alert->alertStyle(), Alert::Style::Warning);
    ASSERT_EQ(alert->buttons().size(), 2);
    EXPECT_EQ(alert->buttons().at(0)->text(), QStringLiteral("Fix Flag"));
    EXPECT_EQ(alert->buttons().at(1)->text(), QStringLiteral("Transcode"));
    EXPECT_LT(alert->buttons().at(0)->x(), alert->buttons().at(1)->x());
    answer(alert, "Fix Flag");
    finish();
}

struct ListRow {
    const char* name;
    const char* codec;
    const char* rotationTag;
    std::vector<const char*> actions;
    const char* mode; // empty: no alert offers a choice
    std::vector<std::string> list; // without input and output
};

void PrintTo(const ListRow& row, std::ostream* stream)
{
    *stream << row.name;
}

class SavedListTest : public SaveTest, public testing::WithParamInterface<ListRow>
{
};

TEST_P(SavedListTest, isThatOfTheCodecTheOrientationAndTheMode)
{
    const ListRow& row = GetParam();
    tools().setSniffer(sniffing(reportOf({.codec = row.codec, .rotate = row.rotationTag})));
    start();
    openVideo();
    expectExport();
    press(row.actions);
    saveByPanel(folder() + "out.mp4");
    if (*row.mode != '\0')
        answer(shownAlert(), row.mode);
    waitForResult();
    finish();
    std::vector<std::string> expected = {"-i", folder() + "clip.mp4"};
    expected.insert(expected.end(), row.list.begin(), row.list.end());
    expected.insert(expected.end(), {"-y", folder() + "out.mp4"});
    EXPECT_EQ(createdArguments(), expected);
}

std::vector<std::string> flagList(const char* rotation)
{
    return {"-c:v", "copy", "-c:a", "copy", "-metadata:s:v", rotation};
}

std::vector<std::string> transcodeList(const std::vector<std::string>& filters)
{
    std::vector<std::string> list = {"-pix_fmt", "yuv420p"};
    list.insert(list.end(), filters.begin(), filters.end());
    list.insert(list.end(), {"-metadata:s:v", "rotate=0"});
    return list;
}

INSTANTIATE_TEST_SUITE_P(exports, SavedListTest,
    testing::Values(
        ListRow{"flagOfAVideoAsItWasOpened", "h264", "90", {}, "Fix Flag", flagList("rotate=-90")},
        ListRow{"transcodeOfAVideoAsItWasOpened", "h264", "90", {}, "Transcode", transcodeList({})},
        ListRow{"flagOfATurnedVideo", "h264", "90", {"rotateLeftBTN"}, "Fix Flag", flagList("rotate=0")},
        ListRow{"transcodeOfATurnedVideo", "h264", "90", {"rotateLeftBTN"}, "Transcode",
            transcodeList({"-vf", "transpose=2"})},
        ListRow{"flagOfBothMirrors", "h264", "", {"flipVerticallyBTN", "flipHorizontallyBTN"}, "Fix Flag",
            flagList("rotate=180")},
        ListRow{"transcodeOfOneMirrorWithoutAChoice", "hevc", "", {"rotateLeftBTN", "flipHorizontallyBTN"},
            "", transcodeList({"-vf", "transpose=2,hflip"})},
        ListRow{"transcodeOfMpeg4WithoutAChoice", "mpeg4", "", {}, "", transcodeList({})},
        ListRow{"transcodeOfACodecInCapitalsWithoutAChoice", "H264", "", {}, "", transcodeList({})},
        ListRow{"transcodeOfVp9WithoutAChoice", "vp9", "", {}, "", transcodeList({})}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(SaveTest, theListIsThatOfTheOrientationWhenTheModeIsChosen)
{
    start();
    openVideo();
    expectExport();
    const std::tuple<const char*, std::size_t, const char*> cases[]
        = {{"Transcode", 5, "transpose=2"}, {"Fix Flag", 7, "rotate=180"}};
    for (const auto& [mode, place, element] : cases) {
        SCOPED_TRACE(mode);
        saveByPanel(folder() + "out.mp4");
        AlertDialog* alert = shownAlert();
        delegate().leftRotateBTNClicked(); // as an assistive program can
        answer(alert, mode);
        finish();
        EXPECT_EQ(createdArguments().at(place), element);
        std::filesystem::remove(folder() + "out.mp4");
    }
}

TEST_F(SaveTest, anotherResponseToTheModeAlertLeavesNothingButALine)
{
    start();
    openVideo();
    expectExport();
    saveByPanel(folder() + "out.mp4");
    AlertDialog* alert = shownAlert();
    testing::internal::CaptureStdout();
    alert->done(0); // as when a desktop closes it: no button was clicked
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Something is Wrong!\n");
    EXPECT_FALSE(isProgressShown());
    EXPECT_FALSE(isAlertShown());
    EXPECT_FALSE(exists(folder() + "created"));
    EXPECT_FALSE(exists(folder() + "out.mp4"));
}

TEST_F(SaveTest, theOrientationAndTheListArePrinted)
{
    tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"})));
    start();
    openVideo();
    expectExport();
    press({"rotateRightBTN", "flipVerticallyBTN"});
    testing::internal::CaptureStdout();
    saveByPanel(folder() + "out.mp4");
    AlertDialog* alert = shownAlert();
    const std::string printed = testing::internal::GetCapturedStdout();
    answer(alert, "OK");
    EXPECT_EQ(printed,
        "positionState : 4, vFlipSte : true, hFlipState : false\n[\"-i\", \"" + folder()
            + "clip.mp4\", \"-pix_fmt\", \"yuv420p\", \"-vf\", \"transpose=1,vflip\", \"-metadata:s:v\", "
              "\"rotate=0\", "
              "\"-y\", \""
            + folder() + "out.mp4\"]\n");
}

} // namespace tarnwell::test
