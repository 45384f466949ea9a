// SPDX-License-Identifier: MIT
// Odd names of files and folders, from open to save. With fake tools: the tools receive the paths byte by
// byte. With the real tools: names that contain the same characters; RealToolsTest has more of them.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Reports.h"

#include <QAction>
#include <QTest>

#include <algorithm>
#include <filesystem>

namespace tarnwell::test
{

namespace
{

enum class Way { Panel, Drop };

const std::string oddNames[] = {
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

/// Only a drop accepts them.
const std::string brokenNames[] = {"two\nlines/a\nclip.mp4", "\xFF\xFE\xC3(.mp4"};

} // namespace

class PathsTest : public FakeToolsTest
{
protected:
    /// Creates the file and its folders.
    std::string placed(const std::string& name)
    {
        const std::string path = folder() + name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        writeFile(path, m_video);
        return path;
    }

    void openBy(Way way, const std::string& path)
    {
        if (way == Way::Panel)
            openByPanel(path);
        else
            ASSERT_TRUE(drop(path));
        ASSERT_TRUE(waitUntil([this] { return !shownPicture().isNull() && !isProgressShown(); }));
        EXPECT_FALSE(isAlertShown());
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
        EXPECT_EQ(contentsOf(m_input), m_video);
    }

    std::string m_video = "bytes";

private:
    std::string m_input;
};

class FakePathsTest : public PathsTest
{
protected:
    void SetUp() override
    {
        tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"}))); // no choice of a mode
        tools().setCreator("with -frames:v record " + folder() + "extracted\nwithout -frames:v record "
            + folder() + "encoded\n" + stillScript());
        start();
    }

    void expectPathsInTheTools(Way way, const std::string& input, const std::string& output)
    {
        openBy(way, input);
        EXPECT_EQ(recordedArguments(folder() + "probed").back(), input);
        EXPECT_EQ(inputOf("extracted"), input);
        save(output);
        EXPECT_EQ(inputOf("encoded"), input);
        EXPECT_EQ(recordedArguments(folder() + "encoded").back(), output);
        EXPECT_EQ(recordedArguments(folder() + "probed").back(), output);
    }

private:
    /// The argument after "-i" that creator has recorded in that file.
    std::string inputOf(const std::string& record) const
    {
        const auto arguments = recordedArguments(folder() + record);
        const auto option = std::find(arguments.begin(), arguments.end(), "-i");
        return option + 1 < arguments.end() ? *(option + 1) : "";
    }
};

TEST_F(FakePathsTest, oddNamesOfFilesAndFoldersWorkByPanelAndDrop)
{
    for (const auto& name : oddNames) {
        SCOPED_TRACE(name);
        expectPathsInTheTools(Way::Panel, placed(name + ".mp4"), folder() + name + " saved.mp4");
        expectPathsInTheTools(Way::Drop, placed(name + ".mov"), folder() + name + " dropped.mp4");
        expectPathsInTheTools(Way::Panel, placed(name + "/clip.mp4"), folder() + name + "/out.mp4");
    }
}

TEST_F(FakePathsTest, lineBreaksAndBytesThatAreNoTextWorkByADrop)
{
    for (const auto& name : brokenNames) {
        SCOPED_TRACE(name);
        expectPathsInTheTools(Way::Drop, placed(name), folder() + "out.mp4");
        std::filesystem::remove(folder() + "out.mp4");
    }
}

TEST_F(FakePathsTest, aDashInFrontOfABareNameIsNoOption)
{
    // The panel returns absolute paths; the working directory has no effect.
    std::filesystem::current_path(folder());
    expectPathsInTheTools(Way::Panel, placed("-i.mp4"), folder() + "-y.mp4");
    std::filesystem::current_path("/");
}

class RealPathsTest : public PathsTest
{
protected:
    void SetUp() override
    {
        tools().useRealSniffer();
        tools().useRealCreator();
        makeSampleVideo(folder() + "sample.mp4", {.codec = "mpeg4"});
        m_video = contentsOf(folder() + "sample.mp4");
        start();
    }

    void openAndSave(Way way, const std::string& input, const std::string& output)
    {
        openBy(way, input);
        EXPECT_EQ(shownPicture().size(), QSize(320, 240));
        save(output);
    }
};

TEST_F(RealPathsTest, oddNamesOfFilesAndFoldersWorkByPanelAndDrop)
{
    const std::string name
        = "-dash it's \"quoted\" 100%d %20 10:30:00 M\xC3\xBCnchen \xE6\x97\xA5\xF0\x9F\x8E\xAC/"
          " file:name time=9:99 back\\slash $HOME `id` ; & | *?[x]{a,b} ";
    const std::vector<std::string> outputs = {folder() + name + "saved.mp4", folder() + "dropped.mp4"};
    openAndSave(Way::Panel, placed(name + ".mp4"), outputs[0]);
    openAndSave(Way::Drop, placed(name + ".mov"), outputs[1]);
    for (const auto& frame : decodedFrames(outputs, 1))
        EXPECT_EQ(frame.size(), QSize(320, 240));
}

TEST_F(RealPathsTest, lineBreaksAndBytesThatAreNoTextWorkByADrop)
{
    std::vector<std::string> outputs;
    for (const auto& name : brokenNames) {
        outputs.push_back(folder() + "out" + std::to_string(outputs.size()) + ".mp4");
        openAndSave(Way::Drop, placed(name), outputs.back());
    }
    for (const auto& frame : decodedFrames(outputs, 1))
        EXPECT_EQ(frame.size(), QSize(320, 240));
}

} // namespace tarnwell::test
