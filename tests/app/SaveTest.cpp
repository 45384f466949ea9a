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
    /// From now on the encoder writes its arguments down and leaves a file.
    void expectExport()
    {
        tools().setCreator("record " + folder() + "created\n" + "copy " + folder() + "still.png\n");
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

TEST_F(SaveTest, theProposedNameSaysWhatWasDone)
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
    for (const auto& [actions, name] : cases) {
        press(actions);
        EXPECT_EQ(proposedName(), name);
    }
}

TEST_F(SaveTest, aCancelledPanelStartsNothing)
{
    start();
    openVideo();
    expectExport();
    proposedName();
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
    start();
    openVideo();
    tools().setSniffer(sniffing(soundReport()));
    writeFile(folder() + "sound.mp3", "bytes");
    ASSERT_TRUE(drop(folder() + "sound.mp3"));
    finish();
    expectExport();
    tools().setSniffer(sniffing(reportOf({})));
    saveByPanel(folder() + "out.mp4");
    finish();
    EXPECT_EQ(createdArguments().at(1), folder() + "sound.mp3");
}

TEST_F(SaveTest, afterARefusedVobFileTheInputIsTheRefusedOne)
{
    tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"})));
    start();
    openVideo();
    tools().setSniffer(sniffing(reportOf({})));
    writeFile(folder() + "clip.vob", "bytes");
    ASSERT_TRUE(drop(folder() + "clip.vob"));
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Tarnwell cannot open .VOB files."));
    finish();
    expectExport();
    saveByPanel(folder() + "out.mp4");
    answer(shownAlert(), "Transcode"); // the choice is that of the refused file's codec
    finish();
    EXPECT_EQ(createdArguments().at(1), folder() + "clip.vob");
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
    QTest::keyClick(alert, Qt::Key_Escape);
    EXPECT_TRUE(alert->isVisible()); // there is no way around the choice
    EXPECT_FALSE(exists(folder() + "created"));
    answer(alert, "Fix Flag");
    finish();
}

TEST_F(SaveTest, fixFlagAndTranscodeRunTheEncoderWithTheirLists)
{
    tools().setSniffer(sniffing(reportOf({.rotate = "90"})));
    start();
    openVideo();
    expectExport();
    action("rotateLeftBTN").trigger();
    const std::string input = folder() + "clip.mp4";
    const std::string output = folder() + "out.mp4";
    saveByPanel(output);
    answer(shownAlert(), "Fix Flag");
    finish();
    const std::vector<std::string> fixFlag
        = {"-i", input, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=0", "-y", output};
    EXPECT_EQ(createdArguments(), fixFlag);
    std::filesystem::remove(output);
    saveByPanel(output);
    answer(shownAlert(), "Transcode");
    finish();
    const std::vector<std::string> transcode = {
        "-i", input, "-pix_fmt", "yuv420p", "-vf", "transpose=2", "-metadata:s:v", "rotate=0", "-y", output};
    EXPECT_EQ(createdArguments(), transcode);
}

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
        delegate().leftRotateBTNClicked(); // whatever way leads past the alert
        answer(alert, mode);
        finish();
        EXPECT_EQ(createdArguments().at(place), element);
        std::filesystem::remove(folder() + "out.mp4");
    }
}

TEST_F(SaveTest, theUntouchedStateStillOffersTheChoice)
{
    tools().setSniffer(sniffing(reportOf({.rotate = "90"})));
    start();
    openVideo();
    expectExport();
    saveByPanel(folder() + "out.mp4");
    answer(shownAlert(), "Fix Flag");
    finish();
    EXPECT_EQ(createdArguments().at(7), "rotate=-90");
    std::filesystem::remove(folder() + "out.mp4");
    saveByPanel(folder() + "out.mp4");
    answer(shownAlert(), "Transcode");
    finish();
    EXPECT_EQ(createdArguments().size(), 8U);
}

TEST_F(SaveTest, withoutAFlaggableCodecThereIsNoChoice)
{
    start();
    for (const char* codec : {"mpeg4", "H264", "vp9"}) {
        SCOPED_TRACE(codec);
        tools().setSniffer(sniffing(reportOf({.codec = codec})));
        tools().setCreator(stillScript());
        openVideo();
        expectExport();
        saveByPanel(folder() + codec + ".mp4");
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text(), QStringLiteral("Video Processed Successfully!"));
        finish();
        EXPECT_EQ(createdArguments().at(2), "-pix_fmt");
    }
}

TEST_F(SaveTest, exactlyOneMirrorIsTranscodedWithoutAChoice)
{
    tools().setSniffer(sniffing(reportOf({.codec = "hevc"})));
    start();
    openVideo();
    expectExport();
    press({"rotateLeftBTN", "flipHorizontallyBTN"});
    saveByPanel(folder() + "out.mp4");
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Rotated and Flipped Successfully!"));
    finish();
    EXPECT_EQ(createdArguments().at(5), "transpose=2,hflip");
}

TEST_F(SaveTest, bothMirrorsAreOfferedAsAFlag)
{
    start();
    openVideo();
    expectExport();
    press({"flipVerticallyBTN", "flipHorizontallyBTN"});
    saveByPanel(folder() + "out.mp4");
    answer(shownAlert(), "Fix Flag");
    finish();
    EXPECT_EQ(createdArguments().at(7), "rotate=180");
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
