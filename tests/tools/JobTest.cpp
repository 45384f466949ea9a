// SPDX-License-Identifier: MIT
// The three argument lists that creator accepts, and ffmpeg's arguments for them.
#include "tools/Job.h"

#include "tests/support/Rows.h"
#include "tests/tools/Commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

const Target target = {"/proc/self/fd/7", "mp4"};

struct JobRow {
    const char* name;
    Job::Kind kind;
    const char* filters;

    Words list(const std::string& input, const std::string& output) const
    {
        if (kind == Job::Kind::Still)
            return stillCommand("1.5", input, output);
        return kind == Job::Kind::FixFlag ? fixFlagCommand(input, output)
                                          : transcodeCommand(input, output, filters);
    }
    Words list() const { return list("in.mp4", "out.mp4"); }
};

const JobRow still = {"still", Job::Kind::Still, ""};
const JobRow fixFlag = {"fixFlag", Job::Kind::FixFlag, ""};
const JobRow transcode = {"transcode", Job::Kind::Transcode, ""};
const JobRow filteredTranscode = {"filteredTranscode", Job::Kind::Transcode, "transpose=1,vflip"};

const Words unusualPaths = {"-i", "-y", "-vf", "*", "", "rotate=90", "/a b/\xC3\xA4\n.mp4", "http://x/y",
    "|ls", "%d.mp4", "concat:a|b", "\xFF.mp4"};

bool contains(const Words& list, const Words& part)
{
    return std::search(list.begin(), list.end(), part.begin(), part.end()) != list.end();
}

Words ffmpegFor(const Words& arguments)
{
    const auto job = readJob(arguments);
    EXPECT_TRUE(job);
    return job ? ffmpegArguments(*job, target) : Words();
}

} // namespace

class JobTest : public testing::TestWithParam<JobRow>
{
protected:
    void expectRefused(const Words& list) const
    {
        EXPECT_FALSE(readJob(list)) << testing::PrintToString(list);
    }
};

TEST_P(JobTest, isReadWithAnyPaths)
{
    for (const auto& path : unusualPaths) {
        SCOPED_TRACE(path);
        const auto job = readJob(GetParam().list(path, "x" + path));
        ASSERT_TRUE(job);
        EXPECT_EQ(job->kind, GetParam().kind);
        EXPECT_EQ(job->input, path);
        EXPECT_EQ(job->output, "x" + path);
        EXPECT_EQ(job->position, job->kind == Job::Kind::Still ? "1.5" : "");
        EXPECT_EQ(job->filters, GetParam().filters);
        EXPECT_EQ(job->rotation, job->kind == Job::Kind::FixFlag ? 90 : 0);
    }
}

TEST_P(JobTest, isRefusedWithAnElementMissingOrAdded)
{
    const Words list = GetParam().list();
    for (std::ptrdiff_t place = 0; place <= std::ssize(list); ++place) {
        Words longer = list;
        longer.insert(longer.begin() + place, "-n");
        expectRefused(longer);
        Words shorter = list;
        if (place < std::ssize(list)) {
            shorter.erase(shorter.begin() + place);
            expectRefused(shorter);
        }
    }
    expectRefused(joined(list, list));
}

TEST_P(JobTest, isRefusedInAnotherOrder)
{
    const Words list = GetParam().list();
    for (std::size_t place = 0; place + 3 < list.size(); place += 2) {
        Words other = list;
        std::swap(other[place], other[place + 2]);
        std::swap(other[place + 1], other[place + 3]);
        expectRefused(other);
    }
}

TEST_P(JobTest, isRefusedWithAnotherOption)
{
    const Words withValue = {"-i", "-y", "-ss", "-vf"}; // any value
    const Words list = GetParam().list();
    for (std::size_t place = 0; place < list.size(); ++place) {
        if (place > 0 && std::count(withValue.begin(), withValue.end(), list[place - 1]) > 0)
            continue;
        Words other = list;
        other[place] += "x";
        expectRefused(other);
    }
}

TEST_P(JobTest, namesInputAndTargetOnceAndNeverTheOutput)
{
    for (const auto& path : unusualPaths) {
        const Words result = ffmpegFor(GetParam().list(path, "the output"));
        EXPECT_EQ(result.front(), "-nostdin");
        EXPECT_TRUE(contains(result, {"-i", "file:" + path})) << path;
        EXPECT_EQ(std::count(result.begin(), result.end(), "-i"), 1);
        EXPECT_EQ(std::count(result.begin(), result.end(), "the output"), 0);
        EXPECT_TRUE(contains(result, {"-f", "mp4", "-y", target.path}));
        EXPECT_EQ(result.back(), target.path);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lists, JobTest, testing::Values(still, fixFlag, transcode, filteredTranscode), rowName);

TEST(RotationArgumentTest, isAnyWholeNumberOfDegrees)
{
    for (const int degrees : {0, 90, 180, 270, -90, -180, 360, 450, -270, 17}) {
        const auto job = readJob(fixFlagCommand("in.mp4", "out.mp4", "rotate=" + std::to_string(degrees)));
        ASSERT_TRUE(job) << degrees;
        EXPECT_EQ(job->rotation, degrees);
    }
    for (const char* tag :
        {"rotate=", "rotate= 90", "rotate=90 ", "rotate=ninety", "rotate=nan", "rotate=inf", "rotate=1e9999",
            "rotate=0x5A", "rotate=99999999999999999999", "rotat=90", "Rotate=90", "90"})
        EXPECT_FALSE(readJob(fixFlagCommand("in.mp4", "out.mp4", tag))) << tag;
}

TEST(ShortListTest, isRefused)
{
    for (const Words& list : {Words(), Words{""}, Words{"-version"}})
        EXPECT_FALSE(readJob(list)) << testing::PrintToString(list);
}

struct ArgumentsRow {
    const char* name;
    JobRow job;
    Words part;
    bool isContained;
};

class FfmpegArgumentsTest : public testing::TestWithParam<ArgumentsRow>
{
};

TEST_P(FfmpegArgumentsTest, isAsStated)
{
    EXPECT_EQ(contains(ffmpegFor(GetParam().job.list()), GetParam().part), GetParam().isContained);
}

const std::string evenSize = "crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0";

INSTANTIATE_TEST_SUITE_P(Parts, FfmpegArgumentsTest,
    testing::Values(ArgumentsRow{"aStillSeeksBeforeItsInput", still,
                        {"-ss", "1.5", "-i", "file:in.mp4", "-map", "0:V:0", "-frames:v", "1"}, true},
        ArgumentsRow{"aFixFlagReportsItsProgress", fixFlag, {"-nostats", "-progress", "pipe:1"}, true},
        ArgumentsRow{"aTranscodeReportsItsProgress", transcode, {"-nostats", "-progress", "pipe:1"}, true},
        ArgumentsRow{"aFixFlagCopiesItsStreams", fixFlag, {"-c:v", "copy", "-c:a", "copy"}, true},
        ArgumentsRow{"aFixFlagHasNoFilter", fixFlag, {"-vf"}, false},
        ArgumentsRow{
            "aTranscodeCropsToAnEvenSize", transcode, {"-pix_fmt", "yuv420p", "-vf", evenSize}, true},
        ArgumentsRow{"aTranscodeFiltersBeforeItCrops", filteredTranscode,
            {"-pix_fmt", "yuv420p", "-vf", "transpose=1,vflip," + evenSize}, true},
        ArgumentsRow{"aTranscodeCopiesNoStream", filteredTranscode, {"copy"}, false}),
    rowName);

TEST(StillArgumentsTest, withoutAPositionDoNotSeek)
{
    auto job = readJob(still.list());
    ASSERT_TRUE(job);
    job->position.clear();
    const Words first = ffmpegArguments(*job, target);
    EXPECT_FALSE(contains(first, {"-ss"}));
    EXPECT_TRUE(contains(first, {"-i", "file:in.mp4", "-map", "0:V:0", "-frames:v", "1"}));
    job->mayBeCover = true;
    EXPECT_TRUE(contains(ffmpegArguments(*job, target), {"-i", "file:in.mp4", "-frames:v", "1"}));
}

TEST(StillArgumentsTest, makePixelsSquare)
{
    const Words result = ffmpegFor(still.list());
    const auto filter = std::find(result.begin(), result.end(), "-vf");
    ASSERT_NE(filter, result.end());
    EXPECT_TRUE((filter + 1)->starts_with("scale="));
    EXPECT_NE((filter + 1)->find(",setsar=1"), std::string::npos);
}

TEST(StreamOptionsTest, standBetweenInputAndTarget)
{
    for (const JobRow& row : {fixFlag, transcode}) {
        const Words result = ffmpegArguments(readJob(row.list()).value(), target, {"-map", "0:1"});
        EXPECT_TRUE(contains(result, {"-i", "file:in.mp4", "-map", "0:1"}));
        EXPECT_FALSE(contains(result, {"copy"}));
        EXPECT_EQ(contains(result, {"-pix_fmt"}), row.kind == Job::Kind::Transcode);
        EXPECT_EQ(result.back(), target.path);
    }
}

TEST(StreamOptionsTest, nameNoContainerIfThereIsNone)
{
    EXPECT_FALSE(contains(ffmpegArguments(readJob(fixFlag.list()).value(), {"/tmp/x.mp4", ""}), {"-f"}));
}

} // namespace tarnwell::test
