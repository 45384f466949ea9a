// SPDX-License-Identifier: MIT
// The runs of ffmpeg that follow one that failed.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"

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

    /// The exit status and what was printed, of a run whose ffmpeg does `before` first.
    struct End {
        int status;
        std::string errors;
        std::size_t runs;
    };
    End endOf(const std::vector<std::string>& job, const std::string& before)
    {
        setGoodFfmpeg("say-arguments\n" + before);
        ToolProcess process(tools.creator(), job);
        const int status = process.wait();
        std::size_t runs = 0;
        for (const std::string& word : process.saidInHex("argument "))
            runs += word == "-nostdin" ? 1 : 0;
        return {status, process.errorText(), runs};
    }
};

TEST_F(CreatorRetryTest, aCopyThatSucceedsIsMadeOnce)
{
    const End end = endOf(fixFlag(), "");
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.runs, 1U);
    EXPECT_EQ(end.errors.find("left out"), std::string::npos);
}

TEST_F(CreatorRetryTest, aCopyThatFailsIsMadePlainly)
{
    for (const std::string failure : {"exit 1\n", "die 11\n", "write-output half\n"}) {
        SCOPED_TRACE(failure);
        const bool isHalf = failure.find("half") != std::string::npos;
        const End end = endOf(fixFlag(), "with -map " + failure + (isHalf ? "with -map exit 0\n" : ""));
        EXPECT_EQ(end.status, 0);
        EXPECT_EQ(end.runs, 2U);
        EXPECT_NE(end.errors.find("all but one video and one sound stream is left out"), std::string::npos);
        EXPECT_TRUE(exists(output()));
    }
}

TEST_F(CreatorRetryTest, anEncodingGoesOnWithoutTheSoundThatFails)
{
    const End copied = endOf(transcode(), "");
    EXPECT_EQ(copied.status, 0);
    EXPECT_EQ(copied.runs, 1U);
    const End encoded = endOf(transcode(), "with copy exit 1\n");
    EXPECT_EQ(encoded.status, 0);
    EXPECT_EQ(encoded.runs, 2U);
    EXPECT_EQ(encoded.errors.find("left out"), std::string::npos);
    const End silent = endOf(transcode(), "without -an exit 1\n");
    EXPECT_EQ(silent.status, 0);
    EXPECT_EQ(silent.runs, 3U);
    EXPECT_NE(silent.errors.find("the sound is left out"), std::string::npos);
}

TEST_F(CreatorRetryTest, aJobFailsWhereEveryRunFails)
{
    EXPECT_EQ(endOf(fixFlag(), "exit 1\n").status, 1);
    EXPECT_EQ(endOf(transcode(), "exit 1\n").status, 1);
    EXPECT_EQ(otherNames(), std::vector<std::string>());
}

TEST_F(CreatorRetryTest, nothingFollowsACancel)
{
    setGoodFfmpeg("say-on-termination ended\nsay-arguments\nwithout -frames:v hang\n");
    ToolProcess process(tools.creator(), fixFlag());
    process.waitForError("argument ");
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait(), 255);
    std::size_t runs = 0;
    for (const std::string& word : process.saidInHex("argument "))
        runs += word == "-nostdin" ? 1 : 0;
    EXPECT_EQ(runs, 1U);
}

TEST_F(CreatorRetryTest, streamsThatAreLeftOutAreNamed)
{
    tools.setFfprobe("print-file "
        + tools.addData("data.json", reportWith(R"(, {"index": 1, "codec_type": "data"})")) + "\n");
    const End end = endOf(fixFlag(), "");
    EXPECT_EQ(end.status, 0);
    EXPECT_NE(end.errors.find("stream 1, of an unknown codec, is left out\n"), std::string::npos);
}

} // namespace tarnwell::test
