// SPDX-License-Identifier: MIT
// Another program replaces, damages or removes the open file: a save then uses the file at the path, or
// fails, and leaves that file unchanged.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Samples.h"

#include <QAction>
#include <QProgressBar>

#include <filesystem>

namespace tarnwell::test
{

class ReplacedFileTest : public FakeToolsTest
{
protected:
    ReplacedFileTest()
    {
        tools().useRealSniffer();
        tools().useRealCreator();
    }

    std::string video() const { return folder() + "clip.mp4"; }
    std::string output() const { return folder() + "out.mp4"; }

    void openAndTurn(const SampleVideo& sample)
    {
        makeSampleVideo(video(), sample);
        start();
        ASSERT_TRUE(drop(video()));
        waitForKeyboard(window());
        action("rotateRightBTN").trigger();
    }

    /// Replaces the open file by a rename, as editors do.
    void replaceBy(const std::string& path) { std::filesystem::rename(path, video()); }

    /// Saves in that mode and answers the alert at the end. Returns its text.
    QString savedBy(const char* mode)
    {
        saveByPanel(output());
        answer(shownAlert(), mode);
        EXPECT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
        return answeredAlert();
    }

    QString answeredAlert()
    {
        AlertDialog* alert = shownAlert();
        const QString text = alert->text();
        answer(alert, "OK");
        waitForKeyboard(window());
        return text;
    }

    void expectFailureInBothModes()
    {
        for (const char* mode : {"Fix Flag", "Transcode"}) {
            SCOPED_TRACE(mode);
            EXPECT_EQ(savedBy(mode), QStringLiteral("Seems like something went wrong!"));
            EXPECT_FALSE(exists(output()));
        }
    }

    static QString success() { return QStringLiteral("Video Rotated Successfully!"); }
};

TEST_F(ReplacedFileTest, anotherVideoInItsPlaceIsSavedAndKeepsItsBytes)
{
    openAndTurn({});
    makeSampleVideo(folder() + "other.mp4", {.size = {400, 200}});
    const std::string other = contentsOf(folder() + "other.mp4");
    replaceBy(folder() + "other.mp4");
    for (const char* mode : {"Fix Flag", "Transcode"}) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(savedBy(mode), success());
        EXPECT_EQ(decodedFrame(output(), 1).size(), QSize(200, 400));
        EXPECT_EQ(contentsOf(video()), other);
        std::filesystem::remove(output());
    }
}

TEST_F(ReplacedFileTest, aTextNothingOrAFolderInItsPlaceEndsInTheAlertAndStaysAsItIs)
{
    openAndTurn({});
    writeFile(video(), "just a text\n");
    expectFailureInBothModes();
    EXPECT_EQ(contentsOf(video()), "just a text\n");
    std::filesystem::remove(video());
    expectFailureInBothModes();
    EXPECT_FALSE(exists(video()));
    std::filesystem::create_directory(video());
    writeFile(video() + "/note", "mine");
    expectFailureInBothModes();
    EXPECT_EQ(contentsOf(video() + "/note"), "mine");
}

TEST_F(ReplacedFileTest, theEncoderFinishesTheVideoThatItHasOpened)
{
    openAndTurn({.size = {640, 360}, .seconds = 12, .codec = "mpeg4"}); // no choice of a mode
    writeFile(folder() + "other.mp4", "just a text\n");
    saveByPanel(output());
    ASSERT_TRUE(waitUntil([this] { return find<QProgressBar>("progressBar").value() > 0; }));
    replaceBy(folder() + "other.mp4");
    ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
    EXPECT_EQ(answeredAlert(), success());
    EXPECT_EQ(decodedFrame(output(), 11).size(), QSize(360, 640));
    EXPECT_EQ(contentsOf(video()), "just a text\n");
}

TEST_F(ReplacedFileTest, aFileReplacedBetweenReportAndStillNeitherStopsNorHangs)
{
    writeFile(video(), "bytes");
    writeFile(folder() + "text", "just a text\n");
    tools().setSniffer(sniffing(reportOf({})) + "copy " + folder() + "text\n"); // over the input
    start();
    EXPECT_TRUE(drop(video()));
    EXPECT_FALSE(isProgressShown());
    EXPECT_FALSE(shownPicture().isNull()); // creator writes a placeholder where nothing decodes
    EXPECT_EQ(contentsOf(video()), "just a text\n");
    tools().useRealSniffer();
    makeSampleVideo(folder() + "good.mp4");
    EXPECT_TRUE(drop(folder() + "good.mp4"));
    EXPECT_FALSE(isAlertShown());
}

} // namespace tarnwell::test
