// SPDX-License-Identifier: MIT
// Real exports on full disks, in folders without write permission, and with cancels and kills at random
// moments. TARNWELL_ROUNDS sets the number of moments.
#include "tests/support/Files.h"
#include "tests/support/Rounds.h"
#include "tests/tools/RealTools.h"
#include "tests/tools/SmallDisk.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <thread>

namespace tarnwell::test
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int cancelled = 255;
const int moments = rounds(10);

// Makes an encoding of three seconds last 300 ms at least, on fast machines too, while the processor idles.
const std::string paced = "hflip,realtime=speed=10";

} // namespace

class RealEndingsTest : public RealTools
{
protected:
    void SetUp() override
    {
        makeVideo(input(), "testsrc2=s=320x180:r=30:d=3", h264());
        m_original = contentsOf(input());
        std::filesystem::create_directory(outputs());
    }

    void TearDown() override { EXPECT_EQ(contentsOf(input()), m_original); }

    std::string input() const { return at("clip.mp4"); }
    std::string outputs() const { return at("out"); }
    std::string output() const { return outputs() + "/Rotated.mp4"; }
    Words left() const { return namesIn(outputs()); }

    Words transcode() const { return transcodeCommand(input(), output(), paced); }
    Words fixFlag() const { return fixFlagCommand(input(), output()); }
    Words still() const { return stillCommand("1.5", input(), output()); }

    /// The duration of the export without a signal.
    std::chrono::microseconds usualTime() const
    {
        const auto begin = Clock::now();
        EXPECT_EQ(creator(transcode()), 0);
        std::filesystem::remove(output());
        return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
    }

    /// Sends the signal in each round at a random moment of another part of the usual time. Returns the
    /// number of rounds per exit status.
    std::map<int, int> endingsWith(int signal)
    {
        std::mt19937 random(static_cast<unsigned int>(signal));
        std::uniform_int_distribution<std::int64_t> moment(0, usualTime().count() / moments);
        std::map<int, int> endings;
        for (int round = 0; round < moments; ++round) {
            const std::chrono::microseconds wait(round * moment.max() + moment(random));
            SCOPED_TRACE(
                testing::Message() << "round " << round << ", after " << wait.count() << " microseconds");
            writeFile(output(), "older");
            ToolProcess process(builtCreator, transcode());
            std::this_thread::sleep_for(wait);
            process.signal(signal);
            const int status = process.wait();
            ++endings[status];
            expectEnding(status);
            for (const auto& name : left())
                std::filesystem::remove(outputs() + "/" + name);
        }
        for (const auto& [status, count] : endings)
            std::cout << "signal " << signal << ": status " << status << " " << count << " times\n";
        return endings;
    }

    void expectEnding(int status) const
    {
        const bool isBeforeItHandlesSignals = status == 128 + SIGTERM || status == 128 + SIGKILL;
        if (status == cancelled)
            EXPECT_EQ(contentsOf(output()), "older");
        else if (status == 0 || contentsOf(output()) != "older")
            EXPECT_GT(contentsOf(output()).size(), 1000U);
        else
            EXPECT_TRUE(isBeforeItHandlesSignals) << status;
        for (const auto& name : left())
            EXPECT_FALSE(name.starts_with(".")) << name;
    }

private:
    std::string m_original;
};

TEST_F(RealEndingsTest, aFullDiskLeavesNothing)
{
    const SmallDisk disk(outputs(), 40);
    if (!disk.isThere())
        GTEST_SKIP() << "this user may not mount anything";
    for (const Words& arguments : {transcode(), fixFlag()}) {
        EXPECT_EQ(creator(arguments), 1);
        EXPECT_EQ(left(), Words());
        ASSERT_TRUE(disk.becomesFree());
        writeFile(output(), "older");
        EXPECT_EQ(creator(arguments), 1);
        EXPECT_EQ(left(), Words({"Rotated.mp4"}));
        EXPECT_EQ(contentsOf(output()), "older");
        std::filesystem::remove(output());
        ASSERT_TRUE(disk.becomesFree());
    }
    writeFile(outputs() + "/filler", std::string(40 * 1024, 'x'));
    EXPECT_EQ(creator(still()), 1);
    EXPECT_EQ(left(), Words({"filler"}));
}

TEST_F(RealEndingsTest, aFolderThatCannotBeWrittenIsReportedAndKept)
{
    const SmallDisk disk(outputs(), 4000);
    if (!disk.isThere())
        GTEST_SKIP() << "this user may not mount anything";
    writeFile(output(), "older");
    ASSERT_TRUE(disk.makeReadOnly());
    for (const Words& arguments : {transcode(), fixFlag(), still()}) {
        ToolProcess process(builtCreator, arguments);
        EXPECT_EQ(process.wait(), 1);
        EXPECT_NE(process.errorText().find("Read-only file system"), std::string::npos)
            << process.errorText();
        EXPECT_EQ(contentsOf(output()), "older");
    }
}

TEST_F(RealEndingsTest, aFolderThatVanishesMidwayIsAFailure)
{
    ToolProcess process(builtCreator, transcode());
    process.waitForError("time=");
    std::filesystem::remove_all(outputs());
    EXPECT_EQ(process.wait(), 1);
    EXPECT_FALSE(exists(outputs()));
}

TEST_F(RealEndingsTest, aCancelAtAnyMomentLeavesOnlyWhatWasThere)
{
    const auto endings = endingsWith(SIGTERM);
    EXPECT_TRUE(endings.contains(cancelled));
}

TEST_F(RealEndingsTest, aKillAtAnyMomentLeavesOnlyWhatWasThere)
{
    const auto endings = endingsWith(SIGKILL);
    EXPECT_TRUE(endings.contains(128 + SIGKILL));
}

} // namespace tarnwell::test
