// SPDX-License-Identifier: MIT
// Another program, or a save, replaces, damages or removes the open file: the next save is refused or fails,
// and leaves the file unchanged.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Samples.h"

#include <QAction>
#include <QProgressBar>

#include <filesystem>
#include <functional>

namespace tarnwell::test
{

class ReplacedFileTest : public FakeToolsTest
{
protected:
    std::string video() const { return folder() + "clip.mp4"; }
    std::string output() const { return folder() + "out.mp4"; }

    void useRealTools()
    {
        tools().useRealSniffer();
        tools().useRealCreator();
    }

    void dropAndTurn()
    {
        ASSERT_TRUE(drop(video()));
        waitForKeyboard(window());
        action("rotateRightBTN").trigger();
    }

    /// Opens a sample with the fake tools, which are faster, and sets the real ones for the save.
    void openAndTurn(const SampleVideo& sample)
    {
        makeSampleVideo(video(), sample);
        tools().setSniffer(sniffing(reportOf({.codec = sample.codec == "libx264" ? "h264" : "mpeg4"})));
        tools().setCreator(stillScript());
        start();
        dropAndTurn();
        useRealTools();
    }

    /// Replaces the open file by a rename, as editors do.
    void replaceBy(const std::string& path) { std::filesystem::rename(path, video()); }

    /// Changes the file while the mode is chosen, then chooses that mode. Returns the text of the alert at
    /// the end.
    QString savedBy(const char* mode, const std::function<void()>& change)
    {
        saveByPanel(output());
        AlertDialog* alert = shownAlert();
        change();
        answer(alert, mode);
        EXPECT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
        return answeredAlert();
    }

    /// A save is refused, because the file is not the one that was opened, and nothing is written.
    void expectRefusal()
    {
        saveByPanel(output());
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text(), failure());
        EXPECT_EQ(alert->informativeText(),
            QStringLiteral("The video has changed since it was opened. Please open it again."));
        answer(alert, "OK");
        waitForKeyboard(window());
        EXPECT_FALSE(exists(output()));
    }

    QString answeredAlert()
    {
        AlertDialog* alert = shownAlert();
        const QString text = alert->text();
        answer(alert, "OK");
        waitForKeyboard(window());
        return text;
    }

    static QString failure() { return QStringLiteral("Seems like something went wrong!"); }
    static QString success() { return QStringLiteral("Video Rotated Successfully!"); }
};

TEST_F(ReplacedFileTest, anotherVideoInItsPlaceIsSavedOnlyAfterItIsOpened)
{
    openAndTurn({});
    makeSampleVideo(folder() + "other.mp4", {.size = {400, 200}});
    const std::string other = contentsOf(folder() + "other.mp4");
    replaceBy(folder() + "other.mp4");
    expectRefusal();
    dropAndTurn();
    for (const char* mode : {"Fix Flag", "Transcode"}) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(savedBy(mode, [] {}), success());
        EXPECT_EQ(decodedFrame(output(), 1).size(), QSize(200, 400));
        EXPECT_EQ(contentsOf(video()), other);
        std::filesystem::remove(output());
    }
}

TEST_F(ReplacedFileTest, aVideoThatASaveHasTurnedIsNotTurnedAgain)
{
    useRealTools();
    makeSampleVideo(video());
    start();
    dropAndTurn();
    std::filesystem::create_directory_symlink(folder(), folder() + "link");
    saveByPanel(folder() + "link/clip.mp4");
    answerReplaceQuestion("&Yes");
    answer(shownAlert(), "Fix Flag");
    ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
    EXPECT_EQ(answeredAlert(), success());
    const std::string turned = contentsOf(video());
    expectRefusal();
    EXPECT_EQ(contentsOf(video()), turned);
}

TEST_F(ReplacedFileTest, aFileThatIsRemovedOrWrittenIsNotSaved)
{
    openAndTurn({});
    std::filesystem::rename(video(), folder() + "elsewhere.mp4");
    expectRefusal();
    std::filesystem::rename(folder() + "elsewhere.mp4", video());
    EXPECT_EQ(savedBy("Fix Flag", [] {}), success()); // it is the one that was opened again
    std::filesystem::remove(output());
    writeFile(video(), contentsOf(video()) + "x");
    expectRefusal();
}

TEST_F(ReplacedFileTest, anotherVideoThatReplacesItWhileTheModeIsChosenIsNotSaved)
{
    openAndTurn({});
    saveByPanel(output());
    AlertDialog* alert = shownAlert();
    makeSampleVideo(folder() + "other.mp4", {.size = {400, 200}});
    replaceBy(folder() + "other.mp4");
    answer(alert, "Fix Flag");
    ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
    EXPECT_EQ(answeredAlert(), failure());
    EXPECT_FALSE(exists(output()));
}

TEST_F(ReplacedFileTest, aTextNothingOrAFolderInItsPlaceEndsInTheAlertAndStaysAsItIs)
{
    const std::function<void()> changes[]
        = {[this] { writeFile(video(), "just a text\n"); }, [this] { std::filesystem::remove(video()); },
            [this] {
                std::filesystem::remove(video());
                std::filesystem::create_directory(video());
                writeFile(video() + "/note", "mine");
            }};
    for (const char* mode : {"Fix Flag", "Transcode"}) {
        SCOPED_TRACE(mode);
        for (const auto& change : changes) {
            std::filesystem::remove_all(video());
            openAndTurn({});
            EXPECT_EQ(savedBy(mode, change), failure());
            EXPECT_FALSE(exists(output()));
        }
        EXPECT_EQ(contentsOf(video() + "/note"), "mine");
    }
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
    tools().useRealCreator();
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
