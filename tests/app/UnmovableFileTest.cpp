// SPDX-License-Identifier: MIT
// An older file at the output's path that the real encoder cannot rename stays, and is no result.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Reports.h"
#include "tests/support/Samples.h"

#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

/// False if the file system or the user cannot set the flag.
bool setImmutable(const std::string& path, bool isImmutable)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    int flags = 0;
    bool isSet = ::ioctl(file, FS_IOC_GETFLAGS, &flags) == 0;
    flags = isImmutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    isSet = isSet && ::ioctl(file, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(file);
    return isSet;
}

} // namespace

class UnmovableFileTest : public FakeToolsTest
{
protected:
    ~UnmovableFileTest() override
    {
        ::unsetenv("LD_PRELOAD");
        ::unsetenv("TARNWELL_FAILS");
    }

    /// The fake tools open the video, the real ones save it.
    void open(const SampleVideo& video)
    {
        std::filesystem::create_directory(videos());
        makeSampleVideo(videos() + "clip.mp4", video);
        makeSampleVideo(output(), {.codec = "mpeg4"});
        m_older = contentsOf(output());
        tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"}))); // no choice of a mode
        start();
        ASSERT_TRUE(drop(videos() + "clip.mp4"));
        waitForKeyboard(window());
        tools().useRealSniffer();
        tools().useRealCreator();
    }

    /// Every rename by the encoder fails from now on.
    static void refuseRenames()
    {
        ::setenv("LD_PRELOAD", TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so", 1);
        ::setenv("TARNWELL_FAILS", "renameat2 -1", 1);
    }

    void saveOverIt()
    {
        saveByPanel(output());
        answerReplaceQuestion("&Yes");
    }

    void expectFailureAlert()
    {
        ASSERT_TRUE(waitUntil([this] { return isResultShown(); }));
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text(), QStringLiteral("Seems like something went wrong!"));
        answer(alert, "OK");
        expectOlderFile();
    }

    void cancel()
    {
        ASSERT_TRUE(waitUntil([this] { return find<QProgressBar>("progressBar").value() > 0; }));
        QTest::mouseClick(&find<QPushButton>("progressCancel"), Qt::LeftButton);
        ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
        EXPECT_FALSE(isAlertShown());
        expectOlderFile();
    }

    void expectOlderFile()
    {
        EXPECT_EQ(contentsOf(output()), m_older);
        EXPECT_EQ(namesIn(videos()), (std::vector<std::string>{"clip.mp4", "out.mp4"}));
    }

    std::string videos() const { return folder() + "videos/"; }
    std::string output() const { return videos() + "out.mp4"; }

private:
    /// The panel's question, which is no result, may still be on the screen.
    bool isResultShown()
    {
        for (const auto* alert : window().findChildren<AlertDialog*>()) {
            if (alert->isVisible() && alert->buttons().first()->text() == QStringLiteral("OK"))
                return true;
        }
        return false;
    }

    std::string m_older;
};

TEST_F(UnmovableFileTest, isNoResult)
{
    open({.codec = "mpeg4"});
    refuseRenames();
    saveOverIt();
    expectFailureAlert();
}

TEST_F(UnmovableFileTest, staysAfterACancel)
{
    open({.size = {1280, 720}, .seconds = 12, .codec = "mpeg4"});
    refuseRenames();
    saveOverIt();
    cancel();
}

TEST_F(UnmovableFileTest, isNoResultWhereItIsImmutable)
{
    open({.codec = "mpeg4"});
    if (!setImmutable(output(), true))
        GTEST_SKIP() << "no file can be made immutable here";
    saveOverIt();
    expectFailureAlert();
    EXPECT_TRUE(setImmutable(output(), false));
}

} // namespace tarnwell::test
