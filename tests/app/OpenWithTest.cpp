// SPDX-License-Identifier: MIT
// A file that a file manager opens with the program.
#include "platform/FileURL.h"
#include "tests/support/ExternalProgram.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <filesystem>
#include <gio/gdesktopappinfo.h>

namespace tarnwell::test
{

class OpenWithProgramTest : public FakeToolsTest
{
protected:
    std::string otherVideo() const
    {
        writeFile(folder() + "other.mp4", "bytes");
        return folder() + "other.mp4";
    }

    static std::string uriOf(const std::string& path) { return FileURL(path).absoluteString(); }

    /// Whether sniffer was called with the path, after the program has handled all requests so far.
    bool wasAnalysed(const std::string& path)
    {
        QCoreApplication::sendPostedEvents();
        return exists(folder() + "probed") && recordedArguments(folder() + "probed").back() == path;
    }
};

TEST_F(OpenWithProgramTest, theFileIsAnalysedAfterTheRequest)
{
    start();
    application().open(uriOf(otherVideo()));
    EXPECT_FALSE(exists(folder() + "probed")) << "the file manager waits for the answer";
    EXPECT_TRUE(waitUntil([this] { return action("rotateLeftBTN").isEnabled(); }));
    EXPECT_TRUE(wasAnalysed(folder() + "other.mp4"));
    EXPECT_EQ(shownPicture(), still());
}

TEST_F(OpenWithProgramTest, aFileThatTheProgramCannotSeeIsReported)
{
    start();
    openVideo();
    for (const std::string& uri : {std::string("sftp://not-mounted.example/other.mp4"),
             uriOf(folder() + "missing.mp4"), uriOf(folder())}) {
        SCOPED_TRACE(uri);
        std::filesystem::remove(folder() + "probed");
        application().open(uri);
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text(), QStringLiteral("Seems like something went wrong!"));
        EXPECT_EQ(alert->windowTitle(), QStringLiteral("Opening Video"));
        application().open(uri);
        QCoreApplication::sendPostedEvents();
        answer(alert, "OK");
        EXPECT_FALSE(isAlertShown()) << "a request under a sheet is not kept";
        EXPECT_FALSE(exists(folder() + "probed"));
        EXPECT_TRUE(action("saveToolBarBTN").isEnabled());
    }
}

TEST_F(OpenWithProgramTest, noFileIsAnalysedWhileASheetIsShown)
{
    start();
    openVideo();
    for (const char* keys : {"F1", "Ctrl+O", "Ctrl+S"}) {
        SCOPED_TRACE(keys);
        type(QKeySequence(QString::fromLatin1(keys)));
        ASSERT_TRUE(waitUntil([] { return QApplication::activeModalWidget() != nullptr; }));
        application().open(uriOf(otherVideo()));
        EXPECT_FALSE(wasAnalysed(folder() + "other.mp4"));
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        waitForKeyboard(window());
    }
}

TEST_F(OpenWithProgramTest, aSecondFileIsIgnoredWhileTheFirstIsAnalysed)
{
    start();
    const std::string first = otherVideo();
    writeFile(folder() + "second.mp4", "bytes");
    application().open(uriOf(first));
    application().open(uriOf(folder() + "second.mp4"));
    EXPECT_TRUE(waitUntil([this] { return action("rotateLeftBTN").isEnabled(); }));
    EXPECT_TRUE(wasAnalysed(first));
}

/// The built program, the desktop entry and the launcher of GIO, which GTK file managers use.
TEST(DesktopEntryTest, giosLauncherOpensAFileInTheRunningProgram)
{
    const TemporaryDirectory folder;
    const std::string video = folder.path() + "my clip \xc3\xa4.mp4";
    makeSampleVideo(video, {.size = {64, 48}});
    ExternalProgram program;
    program.waitForWindow("Tarnwell");
    // GIO ignores an entry whose program is not installed.
    qputenv("PATH", TARNWELL_BUILD_FOLDER "/bin:" + qgetenv("PATH"));
    GDesktopAppInfo* entry
        = g_desktop_app_info_new_from_filename(TARNWELL_RESOURCE_FOLDER "/org.tarnwell.Tarnwell.desktop");
    ASSERT_NE(entry, nullptr);
    std::string uri = FileURL(video).absoluteString();
    GList uris = {.data = uri.data(), .next = nullptr, .prev = nullptr};
    EXPECT_TRUE(g_app_info_launch_uris(G_APP_INFO(entry), &uris, nullptr, nullptr));
    g_object_unref(entry);
    program.waitForWindow("my clip");
}

} // namespace tarnwell::test
