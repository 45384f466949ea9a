// SPDX-License-Identifier: MIT
// Cancelling an export by any tool under the name of the encoder, and the removal of its output.
#include "tests/app/ExportTest.h"
#include "tests/support/ExternalProgram.h"

#include <filesystem>
#include <sys/stat.h>

namespace tarnwell::test
{

namespace
{

namespace fs = std::filesystem;

/// Sets $out to the last argument.
const std::string findOutput = "#!/bin/sh\nfor out; do :; done\n";

} // namespace

class CancelTest : public ExportTest
{
protected:
    /// Makes the encoder a shell script. FakeTools replaces it again.
    void installScript(const std::string& script)
    {
        const std::string creator = tools().folder() + "creator";
        fs::remove(creator);
        writeFile(creator, script);
        fs::permissions(creator, fs::perms::owner_all);
    }

    void saveWithScript(const std::string& script)
    {
        installScript(script);
        saveByPanel(output());
    }

    /// Saves with a script that creates the output by this command, and cancels when that is done.
    void cancelAfter(const std::string& command)
    {
        saveWithScript(findOutput + command + "\ntouch '" + folder() + "running'\nexec sleep 1000000\n");
        ASSERT_TRUE(waitUntil([this] { return exists(folder() + "running"); }));
        cancelWhenPossible();
        expectIdle();
    }
};

TEST_F(CancelTest, aToolWithoutASignalHandlerIsCancelled)
{
    saveWithScript("#!/bin/sh\nexec sleep 1000000\n");
    cancelWhenPossible();
    expectIdle();
}

TEST_F(CancelTest, aShellScriptIsCancelled)
{
    ASSERT_EQ(::mkfifo((folder() + "pipe").c_str(), 0600), 0); // that nothing writes to
    saveWithScript("#!/bin/sh\nread line <'" + folder() + "pipe'\n");
    cancelWhenPossible();
    expectIdle();
}

TEST_F(CancelTest, anOutputFolderIsRemovedWithItsContents)
{
    cancelAfter("mkdir \"$out\" && touch \"$out/file\" && mkdir \"$out/folder\"");
    EXPECT_FALSE(fs::exists(fs::symlink_status(output())));
}

TEST_F(CancelTest, anOutputLinkIsRemovedAndItsTargetStays)
{
    writeFile(folder() + "target", "kept");
    cancelAfter("ln -s '" + folder() + "target' \"$out\"");
    EXPECT_FALSE(fs::exists(fs::symlink_status(output())));
    EXPECT_EQ(contentsOf(folder() + "target"), "kept");
}

TEST_F(CancelTest, aDanglingOutputLinkIsRemoved)
{
    cancelAfter("ln -s '" + folder() + "missing' \"$out\"");
    EXPECT_FALSE(fs::exists(fs::symlink_status(output())));
}

/// With a real video, which plain ffmpeg transcodes.
class PlainFfmpegTest : public CancelTest
{
protected:
    void SetUp() override
    {
        tools().useRealSniffer();
        makeSampleVideo(folder() + "clip.mp4", {.codec = "mpeg4"});
        // The input is repeated at its own speed, so that only a cancel ends the transcode. Messages are
        // dropped: some versions write a status line without a time stamp, which stops the program.
        installScript("#!/bin/sh\nexec ffmpeg -re -stream_loop -1 \"$@\" 2>/dev/null\n");
        start();
        ASSERT_TRUE(drop(folder() + "clip.mp4"));
        waitForKeyboard(window());
    }
};

TEST_F(PlainFfmpegTest, isCancelledDuringATranscodeAndItsOutputRemoved)
{
    saveByPanel(output());
    ASSERT_TRUE(waitUntil([this] { return exists(output()); }));
    cancelWhenPossible();
    expectIdle();
    EXPECT_FALSE(exists(output()));
    EXPECT_TRUE(processesWithArgument(output()).empty());
}

/// An older file, which the probe takes for a video, at the output's place.
class OlderFileTest : public CancelTest
{
protected:
    void SetUp() override
    {
        CancelTest::SetUp();
        writeFile(output(), m_older);
    }

    void saveOverIt()
    {
        saveByPanel(output());
        answerReplaceQuestion("&Yes");
    }

    void saveOverIt(const std::string& creatorScript)
    {
        tools().setCreator(creatorScript);
        saveOverIt();
    }

    /// Waits for the result, and answers it.
    std::string resultText()
    {
        // The panel's question may still be on the screen.
        EXPECT_TRUE(waitUntil([this] { return isProgressShown() || isResultShown(); }));
        EXPECT_TRUE(waitUntil([this] { return isResultShown(); }));
        AlertDialog* alert = shownAlert();
        const std::string text = alert != nullptr ? alert->text().toStdString() : "no alert";
        answer(alert, "OK");
        return text;
    }

    void expectFailureAndTheOlderFile()
    {
        EXPECT_EQ(resultText(), "Seems like something went wrong!");
        EXPECT_EQ(contentsOf(output()), m_older);
    }

    const std::string& older() const { return m_older; }

private:
    bool isResultShown()
    {
        for (const auto* alert : window().findChildren<AlertDialog*>()) {
            if (alert->isVisible() && alert->buttons().first()->text() == QStringLiteral("OK"))
                return true;
        }
        return false;
    }

    std::string m_older = "an older video";
};

TEST_F(OlderFileTest, itIsNoResultOfAnEncoderThatIsKilled)
{
    saveOverIt("die 9\n");
    expectFailureAndTheOlderFile();
}

TEST_F(OlderFileTest, itIsNoResultOfAnEncoderThatDoesNotStart)
{
    tools().makeCreatorUnstartable();
    saveOverIt();
    expectFailureAndTheOlderFile();
}

TEST_F(OlderFileTest, itIsNoResultOfAnEncoderThatWritesNothing)
{
    saveOverIt("exit 0\n");
    expectFailureAndTheOlderFile();
}

TEST_F(OlderFileTest, aCancelBeforeAnythingIsWrittenKeepsIt)
{
    saveOverIt("touch " + folder() + "running\nhang\n");
    ASSERT_TRUE(waitUntil([this] { return exists(folder() + "running"); }));
    cancelWhenPossible();
    expectIdle();
    EXPECT_EQ(contentsOf(output()), older());
}

TEST_F(OlderFileTest, aCancelAfterItIsOverwrittenRemovesIt)
{
    saveOverIt("write-output partial\ntouch " + folder() + "running\nhang\n");
    ASSERT_TRUE(waitUntil([this] { return exists(folder() + "running"); }));
    cancelWhenPossible();
    expectIdle();
    EXPECT_FALSE(exists(output()));
}

TEST_F(OlderFileTest, anEncoderThatFailsAfterItReplacedItHasSucceeded)
{
    saveOverIt(leaveOutput() + "exit 1\n");
    EXPECT_EQ(resultText(), "Video Processed Successfully!");
    EXPECT_EQ(contentsOf(output()), contentsOf(folder() + "still.png"));
}

TEST_F(OlderFileTest, anEncoderThatWritesTheSameBytesInPlaceHasSucceeded)
{
    saveOverIt("write-output " + older() + "\n");
    EXPECT_EQ(resultText(), "Video Processed Successfully!");
    EXPECT_EQ(contentsOf(output()), older());
}

TEST_F(OlderFileTest, anOutputWrittenThroughALinkIsAResult)
{
    fs::rename(output(), folder() + "target");
    fs::create_symlink(folder() + "target", output());
    saveOverIt("write-output new\n");
    EXPECT_EQ(resultText(), "Video Processed Successfully!");
    EXPECT_EQ(contentsOf(folder() + "target"), "new");
}

} // namespace tarnwell::test
