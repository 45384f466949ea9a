// SPDX-License-Identifier: MIT
// Odd names of files and folders, from open to save, with the real tools.
#include "tests/support/Files.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QAction>
#include <QTest>

#include <filesystem>

namespace tarnwell::test
{

namespace
{

const char* const oddNames[] = {
    "two words",
    "it's \"quoted\"",
    "100%d percent %20",
    "10:30:00 colons",
    "time=9:99", // like a status line of creator, with a time that stops the program
    "-dash",
    "M\xC3\xBCnchen \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8E\xAC",
    "back\\slash $HOME `id` ; & | *?[x]{a,b}",
    " blanks around ",
    "file:name",
};

} // namespace

class PathsTest : public WindowTest
{
protected:
    void SetUp() override
    {
        makeSampleVideo(folder() + "sample.mp4", {.codec = "mpeg4"});
        start();
    }

    void open(const std::string& path, const std::string& how)
    {
        if (how == "panel")
            openByPanel(path);
        else
            ASSERT_TRUE(drop(path));
        ASSERT_TRUE(waitUntil([this] { return !shownPicture().isNull() && !isProgressShown(); }));
        EXPECT_FALSE(isAlertShown());
        EXPECT_EQ(shownPicture().size(), QSize(320, 240));
        m_input = path;
        waitForKeyboard(window());
    }

    void save(const std::string& path)
    {
        testing::internal::CaptureStdout();
        saveByPanel(path);
        AlertDialog* alert = shownAlert();
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_NE(printed.find("[\"-i\", \"" + m_input + "\", "), std::string::npos) << printed;
        EXPECT_EQ(alert->text(), QStringLiteral("Video Processed Successfully!"));
        answer(alert, "OK");
        waitForKeyboard(window());
        EXPECT_TRUE(exists(path));
        EXPECT_FALSE(decodedFrame(path, 1).isNull());
    }

    std::string placedAs(const std::string& name)
    {
        const std::string path = folder() + name;
        std::filesystem::copy_file(folder() + "sample.mp4", path);
        return path;
    }

private:
    std::string m_input;
};

TEST_F(PathsTest, oddNamesOfFilesAndFoldersWorkByPanelAndDrop)
{
    for (const std::string name : oddNames) {
        SCOPED_TRACE(name);
        open(placedAs(name + ".mp4"), "panel");
        save(folder() + name + " saved.mp4");
        open(placedAs(name + ".mov"), "drop");
        save(folder() + name + " dropped.mp4");
        std::filesystem::create_directory(folder() + name);
        open(placedAs(name + "/clip.mp4"), "panel");
        save(folder() + name + "/out.mp4");
    }
}

TEST_F(PathsTest, lineBreaksAndBytesThatAreNoTextWorkByADrop)
{
    std::filesystem::create_directory(folder() + "two\nlines");
    for (const std::string name : {"two\nlines/a\nclip.mp4", "\xFF\xFE\xC3(.mp4"}) {
        open(placedAs(name), "drop");
        save(folder() + "out.mp4");
        std::filesystem::remove(folder() + "out.mp4");
        EXPECT_EQ(contentsOf(folder() + name), contentsOf(folder() + "sample.mp4"));
    }
}

TEST_F(PathsTest, aDashInFrontOfABareNameIsNoOption)
{
    // The panel returns absolute paths; the working directory has no effect.
    std::filesystem::current_path(folder());
    open(placedAs("-i.mp4"), "panel");
    save(folder() + "-y.mp4");
    std::filesystem::current_path("/");
}

} // namespace tarnwell::test
