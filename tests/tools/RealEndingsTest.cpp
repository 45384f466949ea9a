// SPDX-License-Identifier: MIT
// How real exports end on full disks, in folders that cannot be written, and when they are cancelled or
// killed at any moment. TARNWELL_ROUNDS sets how many moments are tried.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/SmallDisk.h"
#include "tests/tools/ToolProcess.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Words = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

const std::string creator = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/creator";
constexpr int cancelled = 255;

int rounds()
{
    const char* wanted = std::getenv("TARNWELL_ROUNDS");
    return wanted != nullptr ? std::atoi(wanted) : 20;
}

} // namespace

class RealEndingsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        const Words words = {"-v", "error", "-nostdin", "-f", "lavfi", "-i", "testsrc2=s=640x360:r=30:d=3",
            "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", input()};
        ASSERT_EQ(runTool("/usr/bin/ffmpeg", words), 0);
        m_original = contentsOf(input());
        std::filesystem::create_directory(folder());
    }

    void TearDown() override { EXPECT_EQ(contentsOf(input()), m_original); }

    std::string input() const { return m_folder.path() + "clip.mp4"; }
    /// Where the outputs go.
    std::string folder() const { return m_folder.path() + "out"; }
    std::string output() const { return folder() + "/Rotated.mp4"; }
    Words left() const { return namesIn(folder()); }

    Words transcode() const
    {
        return {"-i", input(), "-pix_fmt", "yuv420p", "-vf", "hflip", "-metadata:s:v", "rotate=0", "-y",
            output()};
    }
    Words fixFlag() const
    {
        return {"-i", input(), "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=90", "-y", output()};
    }
    Words still() const
    {
        return {"-v", "quiet", "-ss", "1.5", "-i", input(), "-frames:v", "1", "-y", output()};
    }

    /// How long the export takes when nobody meddles.
    std::chrono::microseconds usualTime() const
    {
        const auto begin = Clock::now();
        EXPECT_EQ(runTool(creator, transcode()), 0);
        std::filesystem::remove(output());
        return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
    }

    /// Sends the signal at a random moment of each round; how many rounds ended in which way.
    std::map<int, int> endingsWith(int signal)
    {
        std::mt19937 random(static_cast<unsigned int>(signal));
        std::uniform_int_distribution<std::int64_t> moment(0, usualTime().count());
        std::map<int, int> endings;
        for (int round = 0; round < rounds(); ++round) {
            const std::chrono::microseconds wait(moment(random));
            SCOPED_TRACE(
                testing::Message() << "round " << round << ", after " << wait.count() << " microseconds");
            writeFile(output(), "older");
            ToolProcess process(creator, transcode());
            std::this_thread::sleep_for(wait);
            process.signal(signal);
            const int status = process.wait();
            ++endings[status];
            expectEnding(status);
            for (const auto& name : left())
                std::filesystem::remove(folder() + "/" + name);
        }
        for (const auto& [status, count] : endings)
            std::cout << "signal " << signal << ": status " << status << " " << count << " times\n";
        return endings;
    }

    void expectEnding(int status) const
    {
        const bool isBeforeItHeard = status == 128 + SIGTERM || status == 128 + SIGKILL;
        if (status == cancelled)
            EXPECT_EQ(left(), Words({"Rotated (previous).mp4"}));
        else if (status == 0 || contentsOf(output()) != "older")
            EXPECT_GT(contentsOf(output()).size(), 1000U);
        else
            EXPECT_TRUE(isBeforeItHeard) << status;
        for (const auto& name : left())
            EXPECT_FALSE(name.starts_with(".")) << name;
    }

private:
    TemporaryDirectory m_folder;
    std::string m_original;
};

TEST_F(RealEndingsTest, aFullDiskLeavesNothing)
{
    const SmallDisk disk(folder(), 40);
    if (!disk.isThere())
        GTEST_SKIP() << "this user may not mount anything";
    for (const Words& arguments : {transcode(), fixFlag()}) {
        EXPECT_EQ(runTool(creator, arguments), 1);
        EXPECT_EQ(left(), Words());
        ASSERT_TRUE(disk.becomesFree());
        writeFile(output(), "older");
        EXPECT_EQ(runTool(creator, arguments), 1);
        EXPECT_EQ(left(), Words({"Rotated (previous).mp4"}));
        EXPECT_EQ(contentsOf(folder() + "/Rotated (previous).mp4"), "older");
        std::filesystem::remove(folder() + "/Rotated (previous).mp4");
        ASSERT_TRUE(disk.becomesFree());
    }
    writeFile(folder() + "/filler", std::string(40 * 1024, 'x'));
    EXPECT_EQ(runTool(creator, still()), 1);
    EXPECT_EQ(left(), Words({"filler"}));
}

TEST_F(RealEndingsTest, aFolderThatCannotBeWrittenIsToldOfAndLeftAlone)
{
    const SmallDisk disk(folder(), 4000);
    if (!disk.isThere())
        GTEST_SKIP() << "this user may not mount anything";
    writeFile(output(), "older");
    ASSERT_TRUE(disk.makeReadOnly());
    for (const Words& arguments : {transcode(), fixFlag(), still()}) {
        ToolProcess process(creator, arguments);
        EXPECT_EQ(process.wait(), 1);
        EXPECT_NE(process.errorText().find("Read-only file system"), std::string::npos)
            << process.errorText();
        EXPECT_EQ(contentsOf(output()), "older");
    }
}

TEST_F(RealEndingsTest, aFolderThatVanishesMidwayIsAFailure)
{
    ToolProcess process(creator, transcode());
    process.waitForError("time=");
    std::filesystem::remove_all(folder());
    EXPECT_EQ(process.wait(), 1);
    EXPECT_FALSE(exists(folder()));
}

TEST_F(RealEndingsTest, aCancelAtAnyMomentLeavesOnlyWhatWasThere)
{
    const auto endings = endingsWith(SIGTERM);
    EXPECT_TRUE(endings.contains(cancelled));
}

TEST_F(RealEndingsTest, aViolentEndAtAnyMomentLeavesOnlyWhatWasThere)
{
    const auto endings = endingsWith(SIGKILL);
    EXPECT_TRUE(endings.contains(128 + SIGKILL));
}

} // namespace tarnwell::test
