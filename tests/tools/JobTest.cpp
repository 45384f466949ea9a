// SPDX-License-Identifier: MIT
// The three argument lists that creator understands, and what it makes of them for ffmpeg.
#include "tools/Job.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Arguments = std::vector<std::string>;

const Target target = {"/proc/self/fd/7", "mp4"};

Arguments still(const std::string& position, const std::string& input, const std::string& output)
{
    return {"-v", "quiet", "-ss", position, "-i", input, "-frames:v", "1", "-y", output};
}

Arguments fixFlag(const std::string& input, const std::string& tag, const std::string& output)
{
    return {"-i", input, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", tag, "-y", output};
}

Arguments transcode(const std::string& input, const Arguments& filters, const std::string& output)
{
    Arguments list = {"-i", input, "-pix_fmt", "yuv420p"};
    list.insert(list.end(), filters.begin(), filters.end());
    list.insert(list.end(), {"-metadata:s:v", "rotate=0", "-y", output});
    return list;
}

const std::vector<Arguments> lists = {
    still("1.5", "in.mp4", "still.jpg"),
    fixFlag("in.mp4", "rotate=90", "out.mp4"),
    transcode("in.mp4", {}, "out.mp4"),
    transcode("in.mp4", {"-vf", "transpose=1,vflip"}, "out.mp4"),
};

const Arguments oddPaths = {"-i", "-y", "-vf", "*", "", "rotate=90", "/a b/\xC3\xA4\n.mp4", "http://x/y",
    "|ls", "%d.mp4", "concat:a|b", "\xFF.mp4"};

bool holds(const Arguments& list, const Arguments& part)
{
    return std::search(list.begin(), list.end(), part.begin(), part.end()) != list.end();
}

Arguments ffmpegFor(const Arguments& arguments)
{
    const auto job = readJob(arguments);
    EXPECT_TRUE(job);
    return job ? ffmpegArguments(*job, target) : Arguments();
}

} // namespace

TEST(JobTest, aStillIsReadWithAnyPositionAndPaths)
{
    for (const auto& path : oddPaths) {
        SCOPED_TRACE(path);
        const auto job = readJob(still("12.5", path, "x" + path));
        ASSERT_TRUE(job);
        EXPECT_EQ(job->kind, Job::Kind::Still);
        EXPECT_EQ(job->position, "12.5");
        EXPECT_EQ(job->input, path);
        EXPECT_EQ(job->output, "x" + path);
    }
}

TEST(JobTest, aFixFlagIsReadWithAnyTurnAndPaths)
{
    for (const auto& path : oddPaths) {
        for (const int degrees : {0, 90, 180, 270, -90, -180, 360, 450, -270, 17}) {
            SCOPED_TRACE(path + ", " + std::to_string(degrees));
            const auto job = readJob(fixFlag(path, "rotate=" + std::to_string(degrees), "x" + path));
            ASSERT_TRUE(job);
            EXPECT_EQ(job->kind, Job::Kind::FixFlag);
            EXPECT_EQ(job->rotation, degrees);
            EXPECT_EQ(job->input, path);
            EXPECT_EQ(job->output, "x" + path);
        }
    }
}

TEST(JobTest, aTranscodeIsReadWithAndWithoutFilters)
{
    for (const auto& path : oddPaths) {
        SCOPED_TRACE(path);
        const auto filtered = readJob(transcode(path, {"-vf", "transpose=2"}, "x" + path));
        const auto plain = readJob(transcode(path, {}, "x" + path));
        ASSERT_TRUE(filtered && plain);
        for (const auto& job : {*filtered, *plain}) {
            EXPECT_EQ(job.kind, Job::Kind::Transcode);
            EXPECT_EQ(job.input, path);
            EXPECT_EQ(job.output, "x" + path);
        }
        EXPECT_EQ(filtered->filters, "transpose=2");
        EXPECT_EQ(plain->filters, "");
    }
}

TEST(JobTest, aListWithAnElementTooFewIsRefused)
{
    for (const auto& list : lists) {
        for (std::size_t place = 0; place < list.size(); ++place) {
            Arguments shorter = list;
            shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(place));
            EXPECT_FALSE(readJob(shorter)) << list[0] << " without element " << place;
        }
    }
}

TEST(JobTest, aListWithAnElementTooManyIsRefused)
{
    for (const auto& list : lists) {
        for (std::size_t place = 0; place <= list.size(); ++place) {
            Arguments longer = list;
            longer.insert(longer.begin() + static_cast<std::ptrdiff_t>(place), "-n");
            EXPECT_FALSE(readJob(longer)) << list[0] << " with another element " << place;
        }
    }
}

TEST(JobTest, aListInAnotherOrderIsRefused)
{
    for (const auto& list : lists) {
        for (std::size_t place = 0; place + 3 < list.size(); place += 2) {
            Arguments other = list;
            std::swap(other[place], other[place + 2]);
            std::swap(other[place + 1], other[place + 3]);
            EXPECT_FALSE(readJob(other)) << list[0] << " with pair " << place << " exchanged";
        }
    }
}

TEST(JobTest, aListWithAnotherOptionIsRefused)
{
    const std::vector<Arguments> values = {{"-ss", "-i"}, {"-i"}, {"-i"}, {"-i", "-vf"}};
    for (const auto& list : lists) {
        for (std::size_t place = 0; place < list.size(); ++place) {
            const bool isValue = place > 0
                && (list[place - 1] == "-i" || list[place - 1] == "-y" || list[place - 1] == "-ss"
                    || list[place - 1] == "-vf");
            if (isValue)
                continue;
            Arguments other = list;
            other[place] += "x";
            const bool isTurn = list[place] == "rotate=90";
            EXPECT_FALSE(readJob(other)) << list[place] << (isTurn ? ", a turn that is no number" : "");
        }
    }
}

TEST(JobTest, aTurnThatIsNoWholeNumberIsRefused)
{
    for (const char* tag :
        {"rotate=", "rotate= 90", "rotate=90 ", "rotate=ninety", "rotate=nan", "rotate=inf", "rotate=1e9999",
            "rotate=0x5A", "rotate=99999999999999999999", "rotat=90", "Rotate=90", "90"}) {
        EXPECT_FALSE(readJob(fixFlag("in.mp4", tag, "out.mp4"))) << tag;
    }
}

TEST(JobTest, emptyListsAndRepeatedOnesAreRefused)
{
    EXPECT_FALSE(readJob({}));
    EXPECT_FALSE(readJob({""}));
    EXPECT_FALSE(readJob({"-version"}));
    for (const auto& list : lists) {
        Arguments twice = list;
        twice.insert(twice.end(), list.begin(), list.end());
        EXPECT_FALSE(readJob(twice));
    }
}

TEST(FfmpegArgumentsTest, theInputIsAlwaysAPathAndTheTargetComesLast)
{
    for (const auto& path : oddPaths) {
        for (const auto& list :
            {still("1", path, "o"), fixFlag(path, "rotate=0", "o"), transcode(path, {}, "o")}) {
            const Arguments result = ffmpegFor(list);
            EXPECT_TRUE(holds(result, {"-i", "file:" + path})) << path;
            EXPECT_TRUE(holds(result, {"-f", "mp4", "-y", target.path}));
            EXPECT_EQ(result.back(), target.path);
            EXPECT_EQ(std::count(result.begin(), result.end(), "-i"), 1);
        }
    }
}

TEST(FfmpegArgumentsTest, theOutputsOwnPathIsNeverGiven)
{
    for (const auto& list : lists) {
        const Arguments result = ffmpegFor(list);
        EXPECT_EQ(std::count(result.begin(), result.end(), list.back()), 0);
    }
}

TEST(FfmpegArgumentsTest, ffmpegNeverReadsTheTerminal)
{
    for (const auto& list : lists)
        EXPECT_EQ(ffmpegFor(list).front(), "-nostdin");
}

TEST(FfmpegArgumentsTest, aStillSeeksBeforeItsInputAndNotAtAllWithoutAPosition)
{
    auto job = readJob(lists[0]);
    ASSERT_TRUE(job);
    EXPECT_TRUE(holds(ffmpegArguments(*job, target),
        {"-ss", "1.5", "-i", "file:in.mp4", "-map", "0:V:0", "-frames:v", "1"}));
    job->position.clear();
    const Arguments first = ffmpegArguments(*job, target);
    EXPECT_FALSE(holds(first, {"-ss"}));
    EXPECT_TRUE(holds(first, {"-i", "file:in.mp4", "-map", "0:V:0", "-frames:v", "1"}));
    job->mayBeCover = true;
    EXPECT_TRUE(holds(ffmpegArguments(*job, target), {"-i", "file:in.mp4", "-frames:v", "1"}));
}

TEST(FfmpegArgumentsTest, aStillHasSquarePixels)
{
    const Arguments result = ffmpegFor(lists[0]);
    const auto filter = std::find(result.begin(), result.end(), "-vf");
    ASSERT_NE(filter, result.end());
    EXPECT_EQ((filter + 1)->rfind("scale=", 0), 0U);
    EXPECT_NE((filter + 1)->find(",setsar=1"), std::string::npos);
}

TEST(FfmpegArgumentsTest, streamOptionsComeBetweenInputAndTarget)
{
    for (const std::size_t place : {1U, 2U}) {
        const auto job = readJob(lists[place]);
        ASSERT_TRUE(job);
        const Arguments result = ffmpegArguments(*job, target, {"-map", "0:1"});
        EXPECT_TRUE(holds(result, {"-i", "file:in.mp4", "-map", "0:1"}));
        EXPECT_FALSE(holds(result, {"copy"}));
        EXPECT_EQ(holds(result, {"-pix_fmt"}), place == 2);
        EXPECT_EQ(result.back(), target.path);
    }
}

TEST(FfmpegArgumentsTest, bothWaysOfSavingTellOfTheirProgress)
{
    for (std::size_t place = 1; place < lists.size(); ++place)
        EXPECT_TRUE(holds(ffmpegFor(lists[place]), {"-nostats", "-progress", "pipe:1"}));
}

TEST(FfmpegArgumentsTest, aFixFlagCopiesItsStreams)
{
    const Arguments result = ffmpegFor(lists[1]);
    EXPECT_TRUE(holds(result, {"-c:v", "copy", "-c:a", "copy"}));
    EXPECT_FALSE(holds(result, {"-vf"}));
}

TEST(FfmpegArgumentsTest, aTranscodeFiltersToAnEvenSize)
{
    const std::string even = "crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0";
    EXPECT_TRUE(holds(ffmpegFor(lists[2]), {"-pix_fmt", "yuv420p", "-vf", even}));
    EXPECT_TRUE(holds(ffmpegFor(lists[3]), {"-pix_fmt", "yuv420p", "-vf", "transpose=1,vflip," + even}));
    EXPECT_FALSE(holds(ffmpegFor(lists[3]), {"copy"}));
}

TEST(FfmpegArgumentsTest, noContainerIsNamedWhereThereIsNone)
{
    const auto job = readJob(lists[1]);
    ASSERT_TRUE(job);
    EXPECT_FALSE(holds(ffmpegArguments(*job, {"/tmp/x.mp4", ""}), {"-f"}));
}

} // namespace tarnwell::test
