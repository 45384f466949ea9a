// SPDX-License-Identifier: MIT
// Unusable input and broken tools end in an alert, and no file is lost.
#include "app/AppDelegate.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QAction>

#include <filesystem>

namespace tarnwell::test
{

class BadInputTest : public FakeToolsTest
{
protected:
    void expectRefusal()
    {
        AlertDialog* alert = shownAlert();
        ASSERT_NE(alert, nullptr);
        EXPECT_TRUE(alert->text().startsWith(QStringLiteral("Seems to be an unsupported file.")));
        answer(alert, "OK");
        waitForKeyboard(window());
        EXPECT_TRUE(shownPicture().isNull());
        EXPECT_FALSE(action("saveToolBarBTN").isEnabled());
    }

    void refuse(const std::string& snifferScript)
    {
        SCOPED_TRACE(snifferScript);
        tools().setSniffer(snifferScript);
        writeFile(folder() + "clip.mp4", "bytes");
        ASSERT_TRUE(drop(folder() + "clip.mp4"));
        expectRefusal();
        EXPECT_EQ(contentsOf(folder() + "clip.mp4"), "bytes");
    }
};

TEST_F(BadInputTest, aProbeToolThatMisbehavesEndsInTheAlert)
{
    start();
    refuse("");
    refuse("exit 1\n");
    refuse("die 9\n");
    refuse("die 11\n");
    refuse("print rubbish\\n\n");
    refuse("print {\"streams\": [{\"codec_type\": \"video\"\ndie 15\n");
    refuse("print \\xFF\\xFE\\xC3(\n");
    refuse("flood 20000000\n");
    refuse("error only on standard error\\n\n");
}

TEST_F(BadInputTest, aTextAndAnEmptyFileEndInTheAlert)
{
    tools().useRealSniffer();
    tools().useRealCreator();
    start();
    for (const char* contents : {"just a text\n", ""}) {
        writeFile(folder() + "clip.mp4", contents);
        ASSERT_TRUE(drop(folder() + "clip.mp4"));
        expectRefusal();
    }
}

TEST_F(BadInputTest, aFileThatIsMissingAtTheProbeIsReportedAndRefused)
{
    tools().useRealSniffer();
    start();
    testing::internal::CaptureStdout();
    delegate().analyzeFile(FileURL(folder() + "gone.mp4"));
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(printed.starts_with(
        "Failed to get file attributes for local path: " + folder() + "gone.mp4 with error: "));
    expectRefusal();
}

TEST_F(BadInputTest, aFolderIsNotTakenAndNothingHappens)
{
    start();
    std::filesystem::create_directory(folder() + "folder.mp4");
    EXPECT_FALSE(drop(folder() + "folder.mp4"));
    EXPECT_FALSE(isAlertShown());
    EXPECT_FALSE(exists(folder() + "probed"));
}

TEST_F(BadInputTest, anUnstartableProbeToolPrintsALineAndEndsInTheAlert)
{
    tools().makeSnifferUnstartable();
    start();
    writeFile(folder() + "clip.mp4", "bytes");
    testing::internal::CaptureStdout();
    ASSERT_TRUE(drop(folder() + "clip.mp4"));
    EXPECT_TRUE(testing::internal::GetCapturedStdout().starts_with("sniffer could not be started: "));
    expectRefusal();
}

TEST_F(BadInputTest, aFloodOfStatusLinesLosesNoTime)
{
    tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"})));
    start();
    openVideo();
    std::string script;
    for (int line = 0; line < 2000; ++line)
        script += "error frame=1 time=00:00:04.00 bitrate=1\\r\n";
    // A separate chunk: a chunk of the flood can begin in the middle of a line.
    script += "wait-until-read\nerror time=00:00:02.00\\r\n";
    tools().setCreator(script + stillScript());
    testing::internal::CaptureStdout();
    saveByPanel(folder() + "out.mp4");
    AlertDialog* alert = shownAlert();
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Percent : 25.0\n"), std::string::npos);
    answer(alert, "OK");
}

TEST_F(BadInputTest, nothingStaysInTheTemporaryFolderAfterARefusal)
{
    start();
    openVideo();
    tools().setSniffer("print rubbish\n");
    ASSERT_TRUE(drop(folder() + "clip.mp4"));
    answer(shownAlert(), "OK");
    for (const auto& name : namesIn(ownTemporaryFolder())) {
        const std::string path = ownTemporaryFolder() + "/" + name + "/";
        // The folder of the stills stays until the program ends.
        EXPECT_TRUE(path == folder() || path == tools().folder() || namesIn(path).empty()) << path;
    }
}

} // namespace tarnwell::test
