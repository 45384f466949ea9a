// SPDX-License-Identifier: MIT
// A fix flag for a file of the MP4 family: a copy of its bytes, made without ffmpeg.
#include "tests/support/Files.h"
#include "tests/support/Rounds.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"
#include "tests/tools/SmallDisk.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

/// The offsets of the tracks' display matrices.
std::vector<std::size_t> matrixPlaces(const std::string& bytes)
{
    std::vector<std::size_t> places;
    for (auto place = bytes.find("tkhd"); place != std::string::npos; place = bytes.find("tkhd", place + 1))
        places.push_back(place + 4 + (bytes[place + 4] == 1 ? 52 : 40));
    return places;
}

/// The bytes with all display matrices set to zero.
std::string withoutMatrices(std::string bytes)
{
    for (const auto place : matrixPlaces(bytes))
        bytes.replace(place, 36, 36, '\0');
    return bytes;
}

struct Layout {
    const char* name;
    std::string bytes;
    std::vector<bool> isTurned; // one element per track
};

std::vector<Layout> layouts()
{
    TrackBytes portrait;
    portrait.matrix = matrixNine(0, 1, -1, 0, 240, 0);
    TrackBytes mirrored;
    mirrored.version = 1;
    mirrored.matrix = matrixNine(-1, 0, 0, 1, 320, 0);
    TrackBytes cover;
    cover.format = "jpeg";
    cover.samples = 1;
    const std::string video = track("vide");
    const std::string both = video + track("soun", {0, 0, 0});
    std::string fragments;
    for (int number = 0; number < 100; ++number)
        fragments
            += box("moof", box("mfhd", bigEndian(0, 4) + bigEndian(static_cast<std::uint64_t>(number), 4)))
            + mediaData;
    return {
        {"the description first", fileType() + movieBox(both) + mediaData, {true, false}},
        {"the description last", fileType() + box("free", "") + mediaData + movieBox(both), {true, false}},
        {"a matrix at the very end",
            fileType() + mediaData
                + movieBox(box("trak",
                    box("mdia", box("hdlr", bigEndian(0, 8) + "vide" + bigEndian(0, 12))) + trackHeader({}))),
            {true}},
        {"fragments", fileType("iso5") + movieBox(video + box("mvex", "")) + fragments + box("mfra", "x"),
            {true}},
        {"a size of eight bytes",
            fileType() + longBox("mdat", "data") + longBox("moov", movieHeader(1) + both), {true, false}},
        {"data up to the end", fileType() + movieBox(both) + bigEndian(0, 4) + "mdat" + "data",
            {true, false}},
        {"boxes of a camera",
            fileType("mp42") + box("uuid", std::string(100, 'u')) + mediaData
                + movieBox(both + box("udta", "x")) + box("sefd", "private")
                + box("uuid", std::string(20, 'v')),
            {true, false}},
        {"a motion photo's tracks",
            fileType() + mediaData
                + movieBox(
                    both + track("meta", {0, 0, 0}) + track("vide", portrait) + track("meta", {0, 0, 0}))
                + box("mpvd", mediaData),
            {true, false, false, true, false}},
        {"a mirrored matrix", fileType("3gp5") + movieBox(track("vide", mirrored)) + mediaData, {true}},
        {"a cover", fileType("M4V ") + movieBox(track("vide", cover) + both) + mediaData,
            {false, true, false}},
    };
}

} // namespace

class CreatorCopyTest : public CreatorTest
{
protected:
    void SetUp() override
    {
        CreatorTest::SetUp();
        tools.setFfmpeg("error ffmpeg was started\\n\nexit 1\n");
        tools.setFfprobe("error ffprobe was started\\n\nexit 1\n");
        setInput(movieOf(5 << 20));
    }

    int runWithPause(const std::function<void(const ToolProcess&)>& action)
    {
        return CreatorTest::runWithPause("TARNWELL_COPY_WAITS_FOR", fixFlag(), action);
    }

    /// Expects the file at the path to equal the input except for display matrices.
    void expectCopyAt(const std::string& path) const
    {
        EXPECT_TRUE(withoutMatrices(contentsOf(path)) == withoutMatrices(contentsOf(input())));
    }
};

TEST_F(CreatorCopyTest, nothingButTheMatricesOfVideoTracksChanges)
{
    for (const auto& layout : layouts()) {
        SCOPED_TRACE(layout.name);
        setInput(layout.bytes);
        EXPECT_EQ(run(fixFlag()), 0);
        EXPECT_EQ(lastRun().errorText().find("was started"), std::string::npos) << lastRun().errorText();
        const std::string after = contentsOf(output());
        EXPECT_EQ(withoutMatrices(after), withoutMatrices(layout.bytes));
        std::vector<bool> isTurned;
        for (const auto place : matrixPlaces(layout.bytes))
            isTurned.push_back(after.compare(place, 36, layout.bytes, place, 36) != 0);
        EXPECT_EQ(isTurned, layout.isTurned);
    }
}

TEST_F(CreatorCopyTest, aFileThatIsNotWholeByItsStructureGoesToFfmpeg)
{
    setGoodFfmpeg("say-pid\n");
    const std::string movie = movieBox(track("vide"));
    for (const std::string& bytes : {fileType("qt  ") + movie + mediaData, movie + mediaData,
             fileType() + movie + mediaData + movie, fileType() + movie + mediaData + "rest",
             fileType() + movie + mediaData.substr(0, 500), fileType() + movie, std::string("no movie")}) {
        setInput(bytes);
        EXPECT_EQ(run(fixFlag()), 0);
        EXPECT_EQ(lastRun().said("pid ").size(), 1U);
    }
}

TEST_F(CreatorCopyTest, statusLinesEndWithTheDuration)
{
    EXPECT_EQ(run(fixFlag()), 0);
    const auto times = lastRun().said("time=");
    ASSERT_FALSE(times.empty());
    EXPECT_EQ(times.back(), "00:00:04.00");
    EXPECT_EQ(times.size(), lastRun().errors().size());
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
}

TEST_F(CreatorCopyTest, statusLinesAreInProportionToTheCopiedBytes)
{
    // The pause, after the first MiB of 5, is longer than the interval of the lines.
    EXPECT_EQ(
        runWithPause([](const ToolProcess&) { std::this_thread::sleep_for(std::chrono::milliseconds(300)); }),
        0);
    const auto times = lastRun().said("time=");
    ASSERT_GE(times.size(), 3U);
    EXPECT_EQ(times[0], "00:00:00.79");
    EXPECT_EQ(times[1], "00:00:01.59");
    EXPECT_EQ(times.back(), "00:00:04.00");
}

TEST_F(CreatorCopyTest, aFileWithSharedBlocksGetsTheFlag)
{
    const std::string note = tools.at("copied");
    EXPECT_EQ(CreatorTest::runWithPause("TARNWELL_CLONE_WAITS_FOR", fixFlag(), [](const ToolProcess&) {},
                  {"TARNWELL_FAILS=copy_file_range -1", "TARNWELL_FAILED=" + note}),
        0);
    EXPECT_FALSE(exists(note)) << "the bytes were copied";
    expectCopyAt(output());
    EXPECT_NE(contentsOf(output()), contentsOf(input()));
    for (const auto& time : lastRun().said("time="))
        EXPECT_EQ(time, "00:00:04.00");
}

TEST_F(CreatorCopyTest, aCancelCountsAfterBlocksAreShared)
{
    const std::string note = tools.at("patched");
    writeFile(output(), "older");
    EXPECT_EQ(CreatorTest::runWithPause("TARNWELL_CLONE_WAITS_FOR", fixFlag(),
                  [](const ToolProcess& creator) { creator.signal(SIGTERM); },
                  {"TARNWELL_FAILS=pwrite -1", "TARNWELL_FAILED=" + note}),
        cancelled);
    EXPECT_FALSE(exists(note)) << "the flag was written";
    expectOnlyOlderFile();
}

TEST_F(CreatorCopyTest, aCancelDuringTheSearchForBoxesHasNoReason)
{
    std::string boxes;
    for (int count = 0; count < 2000; ++count) // more than are read between two checks
        boxes += box("free", "");
    setInput(boxes + contentsOf(input()));
    EXPECT_EQ(CreatorTest::runWithPause("TARNWELL_WAITS_FOR", fixFlag(),
                  [](const ToolProcess& creator) { creator.signal(SIGTERM); }, {"TARNWELL_FAILS=pread 1"}),
        cancelled);
    EXPECT_EQ(lastRun().errorText(), "");
}

TEST_F(CreatorCopyTest, standardErrorWithoutAReaderDoesNotStopIt)
{
    for (const auto errors : {ToolSetup::ErrorStream::Closed, ToolSetup::ErrorStream::Unread}) {
        EXPECT_EQ(run(fixFlag(), {.errors = errors}), 0);
        expectCopyAt(output());
        std::filesystem::remove(output());
    }
}

TEST_F(CreatorCopyTest, theOutputIsInvisibleDuringTheCopy)
{
    writeFile(output(), "older");
    EXPECT_EQ(runWithPause([this](const ToolProcess&) {
        EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
        EXPECT_EQ(contentsOf(output()), "older");
    }),
        0);
    expectCopyAt(output());
}

TEST_F(CreatorCopyTest, aCancelCountsBetweenTwoPieces)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        writeFile(output(), "older");
        EXPECT_EQ(runWithPause([signal](const ToolProcess& creator) { creator.signal(signal); }), cancelled);
        EXPECT_EQ(lastRun().errorText().find("time=00:00:04.00"), std::string::npos) << "all was copied";
        expectOnlyOlderFile();
    }
}

TEST_F(CreatorCopyTest, aKillLeavesTheOlderFile)
{
    writeFile(output(), "older");
    EXPECT_EQ(runWithPause([](const ToolProcess& creator) { creator.signal(SIGKILL); }), 128 + SIGKILL);
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()), "older");
}

TEST_F(CreatorCopyTest, noMomentOfASignalHarmsAnything)
{
    constexpr int longest = 12000; // microseconds
    setInput(movieOf(16 << 20));
    const std::string expected = withoutMatrices(contentsOf(input()));
    std::mt19937 random(5);
    std::uniform_int_distribution<int> moment(0, longest);
    int ended = 0;
    for (int round = 0; round < rounds(20); ++round) {
        SCOPED_TRACE(round);
        writeFile(output(), "older");
        ToolProcess creator(
            tools.creator(), fixFlag(), {.blocked = SIGTERM}); // the application starts it like this
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        creator.signal(round % 2 == 0 ? SIGTERM : SIGKILL);
        const int status = creator.wait();
        ended += status != 0 ? 1 : 0;
        const std::string now = contentsOf(output());
        if (status == cancelled)
            EXPECT_EQ(now, "older");
        else
            EXPECT_TRUE(withoutMatrices(now) == expected || (status != 0 && now == "older")) << status;
        for (const auto& name : otherNames())
            std::filesystem::remove(tools.at(name)); // including the hidden file of a killed creator
    }
    EXPECT_GT(ended, 0);
}

TEST_F(CreatorCopyTest, anInputThatChangesMeanwhileIsAFailure)
{
    const std::string bytes = contentsOf(input());
    const std::vector<std::function<void()>> changes = {
        [&] { writeFile(input(), bytes + box("free", "more")); },
        [&] { EXPECT_EQ(::truncate(input().c_str(), 3 << 20), 0); },
        [&] { EXPECT_EQ(::truncate(input().c_str(), 0), 0); },
        [&] {
            const int file = ::open(input().c_str(), O_WRONLY | O_CLOEXEC);
            EXPECT_EQ(::pwrite(file, "other", 5, 4 << 20), 5);
            ::close(file);
        },
    };
    for (const auto& change : changes) {
        writeFile(output(), "older");
        EXPECT_EQ(runWithPause([&change](const ToolProcess&) { change(); }), 1);
        expectError("changed meanwhile");
        expectOnlyOlderFile();
        setInput(bytes);
    }
}

TEST_F(CreatorCopyTest, aFullDiskLeavesNothing)
{
    std::filesystem::create_directory(tools.at("small"));
    const SmallDisk disk(tools.at("small"), 2048);
    ASSERT_TRUE(disk.isThere()) << "this user may not mount anything";
    const std::string path = tools.at("small/Rotated.mp4");
    EXPECT_EQ(run(fixFlag(path)), 1);
    expectError("No space left");
    EXPECT_EQ(namesIn(tools.at("small")), Words());
    writeFile(path, "older");
    EXPECT_EQ(run(fixFlag(path)), 1);
    expectError("No space left");
    EXPECT_EQ(namesIn(tools.at("small")), Words({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(path), "older");
}

TEST_F(CreatorCopyTest, aLimitOfTheFileSizeIsAFailure)
{
    EXPECT_EQ(run(fixFlag(), {.largestFile = 100000}), 1);
    EXPECT_EQ(otherNames(), Words());
}

TEST_F(CreatorCopyTest, anOutputOnAnotherFileSystemIsCopiedTo)
{
    std::filesystem::create_directory(tools.at("disk"));
    const SmallDisk disk(tools.at("disk"), 20000);
    ASSERT_TRUE(disk.isThere()) << "this user may not mount anything";
    EXPECT_EQ(run(fixFlag(tools.at("disk/Rotated.mp4"))), 0);
    expectCopyAt(tools.at("disk/Rotated.mp4"));
}

TEST_F(CreatorCopyTest, aHiddenFileIsUsedIfFilesNeedAName)
{
    EXPECT_EQ(run(fixFlag(), {.refused = {RefusedCall::OpenNameless, RefusedCall::CopyFileRange}}), 0);
    expectCopyAt(output());
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
}

TEST_F(CreatorCopyTest, anOutputAtTheInputsPathRenamesTheInput)
{
    expectInputAt(originalPath());
    EXPECT_EQ(run(fixFlag(tools.at("./clip.mp4"))), 0);
    EXPECT_FALSE(contentsOf(input()) == contentsOf(originalPath()));
    expectCopyAt(originalPath());
}

TEST_F(CreatorCopyTest, aSparseFileOfFiveGigabytesStaysSparse)
{
    constexpr std::uint64_t dataSize = 5'000'000'000;
    const std::string begin
        = fileType() + movieBox(track("vide")) + bigEndian(1, 4) + "mdat" + bigEndian(dataSize, 8);
    const std::string path = tools.at("sparse.mp4");
    const std::uint64_t size = begin.size() + dataSize - 16;
    writeFile(path, begin);
    ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(size)), 0);
    EXPECT_EQ(run(fixFlagCommand(path, output())), 0);
    struct stat status = {};
    ASSERT_EQ(::stat(output().c_str(), &status), 0);
    EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), size);
    EXPECT_LT(status.st_blocks * 512, 1 << 20);
}

} // namespace tarnwell::test
