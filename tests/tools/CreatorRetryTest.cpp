// SPDX-License-Identifier: MIT
// The runs of ffmpeg after a failed one.
#include "tests/support/Files.h"
#include "tests/support/Rows.h"
#include "tests/tools/CreatorTest.h"

#include <algorithm>
#include <csignal>
#include <string>

namespace tarnwell::test
{

namespace
{

const std::string sounds = R"(, {"index": 1, "codec_type": "audio", "codec_name": "aac", "channels": 2})";

std::string reportWith(const std::string& moreStreams)
{
    return R"({"streams": [{"index": 0, "codec_type": "video", "codec_name": "h264", "avg_frame_rate": "25/1",)"
           R"( "width": 64, "height": 48})"
        + moreStreams + "]}";
}

} // namespace

class CreatorRetryTest : public CreatorTest
{
protected:
    void SetUp() override
    {
        CreatorTest::SetUp();
        tools.setFfprobe("print-file " + tools.addData("streams.json", reportWith(sounds)) + "\n");
    }

    /// Runs a job whose ffmpeg first runs the commands in `before`; returns the exit status.
    int runWith(const Words& job, const std::string& before)
    {
        setGoodFfmpeg("say-arguments\n" + before);
        return run(job);
    }

    static std::ptrdiff_t runsOfFfmpeg(const ToolProcess& creator)
    {
        const Words words = creator.saidInHex("argument ");
        return std::count(words.begin(), words.end(), "-nostdin");
    }
};

struct RetryRow {
    const char* name;
    bool isFlag;
    const char* before; // commands of ffmpeg
    int status;
    int runs;
    const char* omission; // the message of creator about omitted streams
};

class RetryTableTest : public CreatorRetryTest, public testing::WithParamInterface<RetryRow>
{
};

TEST_P(RetryTableTest, isAsStated)
{
    const RetryRow& row = GetParam();
    EXPECT_EQ(runWith(row.isFlag ? fixFlag() : transcode(), row.before), row.status);
    EXPECT_EQ(runsOfFfmpeg(lastRun()), row.runs);
    EXPECT_EQ(exists(output()), row.status == 0);
    const bool isReported = lastRun().errorText().find("left out") != std::string::npos;
    EXPECT_EQ(isReported, *row.omission != '\0') << lastRun().errorText();
    expectError(row.omission);
}

const char* const records = "records of Dolby Vision and of spherical video are left out";

INSTANTIATE_TEST_SUITE_P(Runs, RetryTableTest,
    testing::Values(RetryRow{"aCopyThatSucceedsIsMadeOnce", true, "", 0, 1, ""},
        RetryRow{"aCopyThatFailsIsFollowedByAPlainOne", true, "with -strict exit 1\n", 0, 2, records},
        RetryRow{"aCopyThatCrashesIsFollowedByAPlainOne", true, "with -strict die 11\n", 0, 2, records},
        RetryRow{"aCopyThatIsIncompleteIsFollowedByAPlainOne", true,
            "with -strict write-output half\nwith -strict exit 0\n", 0, 2, records},
        RetryRow{"anEncodingThatSucceedsIsMadeOnce", false, "", 0, 1, ""},
        RetryRow{"anEncodingThatFailsWithACopyOfTheSoundEncodesIt", false, "with copy exit 1\n", 0, 2, ""},
        RetryRow{"anEncodingThatFailsWithSoundLeavesItOut", false, "without -an exit 1\n", 0, 3,
            "stream 1, in aac, is left out"},
        RetryRow{"aCopyFailsIfEveryRunFails", true, "exit 1\n", 1, 2, ""},
        RetryRow{"anEncodingFailsIfEveryRunFails", false, "exit 1\n", 1, 3, ""}),
    rowName);

TEST_F(CreatorRetryTest, aRunThatWritesNothingDoesNotReuseTheOutputOfTheRunBefore)
{
    tools.setFfmpeg("with -strict write-output-file " + tools.addData("whole movie", movie())
        + "\nwith -strict exit 1\n");
    EXPECT_EQ(run(fixFlag()), 1);
    EXPECT_FALSE(exists(output()));
}

TEST_F(CreatorRetryTest, nothingFollowsACancel)
{
    setGoodFfmpeg("say-on-termination ended\nsay-arguments\nwithout -frames:v hang\n");
    ToolProcess process(tools.creator(), fixFlag());
    process.waitForError("argument ");
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait(), cancelled);
    EXPECT_EQ(runsOfFfmpeg(process), 1);
}

TEST_F(CreatorRetryTest, streamsThatAreLeftOutAreReported)
{
    tools.setFfprobe("print-file "
        + tools.addData("data.json", reportWith(R"(, {"index": 1, "codec_type": "data"})")) + "\n");
    EXPECT_EQ(runWith(fixFlag(), ""), 0);
    expectError("stream 1, of an unknown codec, is left out\n");
}

} // namespace tarnwell::test
