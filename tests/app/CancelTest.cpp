// SPDX-License-Identifier: MIT
// The cancel of an export whose encoder is any program, the removal of its output, and older files in its
// place.
#include "tests/app/ExportTest.h"
#include "tests/support/ExternalProgram.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

namespace tarnwell::test
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* success = "Video Processed Successfully!";
constexpr const char* failure = "Seems like something went wrong!";

} // namespace

class CancelTest : public ExportTest
{
protected:
    /// Makes the encoder a shell script. FakeTools replaces it again.
    void installScript(const std::string& script)
    {
        const std::string creator = tools().folder() + "creator";
        fs::remove(creator);
        writeFile(creator, "#!/bin/sh\ncd '" + folder() + "'\n" + script);
        fs::permissions(creator, fs::perms::owner_all);
    }

    /// Waits until the encoder's script has created the file "running", and cancels.
    void cancelWhenRunning()
    {
        ASSERT_TRUE(waitUntil([this] { return exists(folder() + "running"); }));
        cancelWhenPossible();
        expectIdle();
    }
};

TEST_F(CancelTest, endsToolsWithoutASignalHandler)
{
    ASSERT_EQ(::mkfifo((folder() + "pipe").c_str(), 0600), 0); // that nothing writes to
    for (const char* script : {"exec sleep 1000000\n", "read line <pipe\n"}) {
        SCOPED_TRACE(script);
        installScript(script);
        saveByPanel(output());
        cancelWhenPossible();
        expectIdle();
        waitForKeyboard(window());
    }
}

TEST_F(CancelTest, removesOutputsOfEveryKindButNotTheTargetOfALink)
{
    writeFile(folder() + "target", "kept");
    for (const char* command : {"mkdir \"$out\" && touch \"$out/file\" && mkdir \"$out/folder\"",
             "ln -s target \"$out\"", "ln -s missing \"$out\""}) {
        SCOPED_TRACE(command);
        fs::remove(folder() + "running");
        installScript("for out; do :; done\n" // the last argument
            + std::string(command) + "\ntouch running\nexec sleep 1000000\n");
        saveByPanel(output());
        cancelWhenRunning();
        EXPECT_FALSE(fs::exists(fs::symlink_status(output())));
        waitForKeyboard(window());
    }
    EXPECT_EQ(contentsOf(folder() + "target"), "kept");
}

TEST_F(CancelTest, keepsAnOlderFileThatWasRenamedAndBack)
{
    writeFile(output(), "an older video");
    installScript("mv out.mp4 aside && mv aside out.mp4 && chmod 600 out.mp4\n"
                  "touch running\nexec sleep 1000000\n");
    saveByPanel(output());
    answerReplaceQuestion("&Yes");
    cancelWhenRunning();
    EXPECT_EQ(contentsOf(output()), "an older video");
}

TEST_F(CancelTest, removesNothingFromAnotherFolderThatTakesThePathOfTheOutputsFolder)
{
    fs::create_directory(folder() + "videos");
    fs::create_directory(folder() + "private");
    writeFile(folder() + "private/out.mp4", "kept");
    installScript("echo partial >videos/out.mp4\nmv videos moved\nln -s private videos\n"
                  "touch running\nexec sleep 1000000\n");
    saveByPanel(folder() + "videos/out.mp4");
    cancelWhenRunning();
    EXPECT_EQ(contentsOf(folder() + "private/out.mp4"), "kept");
    EXPECT_FALSE(exists(folder() + "moved/out.mp4"));
    // An open descriptor of the folder would keep its file system mounted.
    for (const auto& descriptor : fs::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        EXPECT_NE(fs::read_symlink(descriptor, ignored), folder() + "moved");
    }
}

TEST_F(CancelTest, aVideoInAnotherFolderThatTakesThePathOfTheOutputsFolderIsNoResult)
{
    for (const char* swap : {"mv other videos", "ln -s other videos", "cp -a moved videos"}) {
        SCOPED_TRACE(swap);
        for (const char* name : {"videos", "moved", "other"})
            fs::remove_all(folder() + name);
        fs::create_directory(folder() + "videos");
        fs::create_directory(folder() + "other");
        writeFile(folder() + "other/out.mp4", "a video of another user");
        installScript(std::string("echo video >videos/out.mp4\nmv videos moved\n") + swap + "\n");
        saveByPanel(folder() + "videos/out.mp4");
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text().toStdString(), failure);
        finish();
        waitForKeyboard(window());
    }
}

TEST_F(CancelTest, aFolderThatIsMovedAndBackHoldsTheResult)
{
    fs::create_directory(folder() + "videos");
    installScript("mv videos moved\nmv moved videos\necho video >videos/out.mp4\n");
    saveByPanel(folder() + "videos/out.mp4");
    EXPECT_EQ(shownAlert()->text().toStdString(), success);
    finish();
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
        installScript("exec ffmpeg -re -stream_loop -1 \"$@\" 2>/dev/null\n");
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

struct OlderFileRow {
    const char* name;
    std::string creatorScript; // see inFolder(); empty: the encoder cannot be started
    const char* alert; // empty: the export is cancelled when the file "running" exists
    const char* expectedOutput;
    bool isLink = false;
};

void PrintTo(const OlderFileRow& row, std::ostream* stream)
{
    *stream << row.name;
}

/// An older file is in the output's place. The probe reports every file as a video.
class OlderFileTest : public CancelTest, public testing::WithParamInterface<OlderFileRow>
{
protected:
    void saveOverIt()
    {
        saveByPanel(output());
        answerReplaceQuestion("&Yes");
    }

    /// Waits for the result and answers it. The panel's question may still be on the screen at first.
    void expectResult(const std::string& text)
    {
        ASSERT_TRUE(waitUntil([this] { return isResultShown(); }));
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text().toStdString(), text);
        answer(alert, "OK");
    }

private:
    bool isResultShown()
    {
        const auto alerts = window().findChildren<AlertDialog*>();
        return std::any_of(alerts.begin(), alerts.end(), [](const AlertDialog* alert) {
            return alert->isVisible() && alert->buttons().first()->text() == QStringLiteral("OK");
        });
    }
};

TEST_P(OlderFileTest, isTheResultOnlyIfTheEncoderChangesIt)
{
    const OlderFileRow& row = GetParam();
    const std::string file = row.isLink ? folder() + "target" : output();
    writeFile(file, "an older video");
    writeFile(folder() + "new", "a new video");
    if (row.isLink)
        fs::create_symlink(file, output());
    tools().setCreator(inFolder(row.creatorScript));
    if (row.creatorScript.empty())
        tools().makeCreatorUnstartable();
    saveOverIt();
    if (*row.alert == '\0')
        cancelWhenRunning();
    else
        expectResult(row.alert);
    EXPECT_EQ(contentsOf(file), row.expectedOutput);
}

INSTANTIATE_TEST_SUITE_P(encoders, OlderFileTest,
    testing::Values(OlderFileRow{"thatIsKilled", "die 9\n", failure, "an older video"},
        OlderFileRow{"thatCannotBeStarted", "", failure, "an older video"},
        OlderFileRow{"thatWritesNothing", "exit 0\n", failure, "an older video"},
        OlderFileRow{"thatIsCancelledBeforeItWrites", "touch @running\nhang\n", "", "an older video"},
        OlderFileRow{"thatIsCancelledAfterItWrites", "write-output partial\ntouch @running\nhang\n", "", ""},
        OlderFileRow{"thatFailsAfterItReplacesTheFile", "copy @new\nexit 1\n", success, "a new video"},
        OlderFileRow{"thatWritesTheSameBytes", "write-output an older video\n", success, "an older video"},
        OlderFileRow{"thatWritesThroughALink", "write-output a new video\n", success, "a new video", true}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace tarnwell::test
