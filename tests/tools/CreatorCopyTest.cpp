// SPDX-License-Identifier: MIT
// The fix flag of a file of the MP4 family: a copy of its bytes, for which ffmpeg is not started.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
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

using Names = std::vector<std::string>;

constexpr int cancelled = 255;
const std::string previous = "Rotated (previous).mp4";
const std::string data = box("mdat", std::string(1000, 'd'));

/// Where the display matrices of the tracks begin.
std::vector<std::size_t> matrixPlaces(const std::string& bytes)
{
    std::vector<std::size_t> places;
    for (auto place = bytes.find("tkhd"); place != std::string::npos; place = bytes.find("tkhd", place + 1))
        places.push_back(place + 4 + (bytes[place + 4] == 1 ? 52 : 40));
    return places;
}

/// The bytes with all matrices emptied.
std::string withoutMatrices(std::string bytes)
{
    for (const auto place : matrixPlaces(bytes))
        bytes.replace(place, 36, 36, '\0');
    return bytes;
}

struct Layout {
    const char* name;
    std::string bytes;
    std::vector<bool> isTurned; // each track, in order
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
            + data;
    return {
        {"the description first", fileType() + movieBox(both) + data, {true, false}},
        {"the description last", fileType() + box("free", "") + data + movieBox(both), {true, false}},
        {"a matrix at the very end",
            fileType() + data
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
            fileType("mp42") + box("uuid", std::string(100, 'u')) + data + movieBox(both + box("udta", "x"))
                + box("sefd", "private") + box("uuid", std::string(20, 'v')),
            {true, false}},
        {"a motion photo's tracks",
            fileType() + data
                + movieBox(
                    both + track("meta", {0, 0, 0}) + track("vide", portrait) + track("meta", {0, 0, 0}))
                + box("mpvd", data),
            {true, false, false, true, false}},
        {"a mirrored matrix", fileType("3gp5") + movieBox(track("vide", mirrored)) + data, {true}},
        {"a cover", fileType("M4V ") + movieBox(track("vide", cover) + both) + data, {false, true, false}},
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

    /// Runs creator until it has copied a first piece, does `meanwhile`, and lets it go on; its exit status.
    int whileItCopies(const std::function<void(const ToolProcess&)>& meanwhile)
    {
        const std::string goOn = tools.addData("go on", "");
        std::filesystem::remove(goOn);
        ToolSetup setup;
        setup.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
            "TARNWELL_COPY_WAITS_FOR=" + goOn};
        ToolProcess creator(tools.creator(), fixFlag(), setup);
        while (!exists(goOn + ".waiting") && isRunning(creator.processId()))
            std::this_thread::yield();
        EXPECT_TRUE(exists(goOn + ".waiting"));
        meanwhile(creator);
        writeFile(goOn, "");
        const int status = creator.wait();
        std::filesystem::remove(goOn + ".waiting");
        m_errors = creator.errorText();
        return status;
    }

    void expectFailureAfter(const std::function<void()>& change)
    {
        const std::string bytes = contentsOf(input());
        writeFile(output(), "older");
        EXPECT_EQ(whileItCopies([&change](const ToolProcess&) { change(); }), 1);
        EXPECT_NE(m_errors.find("changed meanwhile"), std::string::npos) << m_errors;
        EXPECT_EQ(otherNames(), Names({previous}));
        EXPECT_EQ(contentsOf(tools.at(previous)), "older");
        std::filesystem::remove(tools.at(previous));
        setInput(bytes);
    }

    std::string m_errors;
};

TEST_F(CreatorCopyTest, nothingButTheMatricesOfVideoTracksChanges)
{
    for (const auto& layout : layouts()) {
        SCOPED_TRACE(layout.name);
        setInput(layout.bytes);
        ToolProcess creator(tools.creator(), fixFlag());
        EXPECT_EQ(creator.wait(), 0);
        EXPECT_EQ(creator.errorText().find("was started"), std::string::npos) << creator.errorText();
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
    for (const std::string& bytes : {fileType("qt  ") + movie + data, movie + data,
             fileType() + movie + data + movie, fileType() + movie + data + "rest",
             fileType() + movie + data.substr(0, 500), fileType() + movie, std::string("no movie")}) {
        setInput(bytes);
        ToolProcess creator(tools.creator(), fixFlag());
        EXPECT_EQ(creator.wait(), 0);
        EXPECT_EQ(creator.said("pid ").size(), 1U);
    }
}

TEST_F(CreatorCopyTest, statusLinesEndWithTheDuration)
{
    ToolProcess creator(tools.creator(), fixFlag());
    EXPECT_EQ(creator.wait(), 0);
    ASSERT_FALSE(creator.errors().empty());
    EXPECT_EQ(creator.errors().back(), "time=00:00:04.00\n");
    const auto times = creator.said("time=");
    EXPECT_EQ(times.size(), creator.errors().size());
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
}

TEST_F(CreatorCopyTest, aMissingReaderOfTheStatusLinesDoesNotStopIt)
{
    for (const auto errors : {ToolSetup::ErrorStream::Closed, ToolSetup::ErrorStream::Unread}) {
        ToolSetup setup;
        setup.errors = errors;
        ToolProcess creator(tools.creator(), fixFlag(), setup);
        EXPECT_EQ(creator.wait(), 0);
        EXPECT_EQ(contentsOf(output()).size(), contentsOf(input()).size());
        std::filesystem::remove(output());
    }
}

TEST_F(CreatorCopyTest, nothingIsSeenOfTheOutputWhileItIsCopied)
{
    writeFile(output(), "older");
    EXPECT_EQ(whileItCopies([this](const ToolProcess&) {
        EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
        EXPECT_EQ(contentsOf(output()), "older");
    }),
        0);
    EXPECT_EQ(withoutMatrices(contentsOf(output())), withoutMatrices(contentsOf(input())));
}

TEST_F(CreatorCopyTest, aCancelCountsBetweenTwoPieces)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        writeFile(output(), "older");
        EXPECT_EQ(whileItCopies([signal](const ToolProcess& creator) { creator.signal(signal); }), cancelled);
        EXPECT_EQ(m_errors.find("time=00:00:04.00"), std::string::npos) << "it copied to the end";
        EXPECT_EQ(otherNames(), Names({previous}));
        EXPECT_EQ(contentsOf(tools.at(previous)), "older");
        std::filesystem::remove(tools.at(previous));
    }
}

TEST_F(CreatorCopyTest, aKillLeavesWhatWasThere)
{
    writeFile(output(), "older");
    EXPECT_EQ(whileItCopies([](const ToolProcess& creator) { creator.signal(SIGKILL); }), 128 + SIGKILL);
    EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()), "older");
}

TEST_F(CreatorCopyTest, noMomentOfASignalHarmsAnything)
{
    constexpr int rounds = 60;
    constexpr int longest = 12000; // microseconds
    setInput(movieOf(16 << 20));
    const std::string expected = withoutMatrices(contentsOf(input()));
    std::mt19937 random(5);
    std::uniform_int_distribution<int> moment(0, longest);
    int ended = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        writeFile(output(), "older");
        ToolSetup setup;
        setup.blocked = SIGTERM; // as the application starts it
        ToolProcess creator(tools.creator(), fixFlag(), setup);
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        creator.signal(round % 2 == 0 ? SIGTERM : SIGKILL);
        const int status = creator.wait();
        ended += status != 0 ? 1 : 0;
        const std::string now = contentsOf(output());
        if (status == cancelled)
            EXPECT_EQ(contentsOf(tools.at(previous)), "older");
        else
            EXPECT_TRUE(withoutMatrices(now) == expected || (status != 0 && now == "older")) << status;
        std::filesystem::remove(output());
        std::filesystem::remove(tools.at(previous));
        for (const auto& name : otherNames())
            std::filesystem::remove(tools.at(name)); // the hidden file of a creator that was killed
    }
    EXPECT_GT(ended, 0);
}

TEST_F(CreatorCopyTest, anInputThatChangesMeanwhileIsAFailure)
{
    expectFailureAfter([this] { writeFile(input(), contentsOf(input()) + box("free", "more")); });
    expectFailureAfter([this] { EXPECT_EQ(::truncate(input().c_str(), 3 << 20), 0); });
    expectFailureAfter([this] { EXPECT_EQ(::truncate(input().c_str(), 0), 0); });
    expectFailureAfter([this] {
        const int file = ::open(input().c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(::pwrite(file, "other", 5, 4 << 20), 5);
        ::close(file);
    });
}

TEST_F(CreatorCopyTest, aFullDiskLeavesNothing)
{
    std::filesystem::create_directory(tools.at("small"));
    const SmallDisk disk(tools.at("small"), 2048);
    ASSERT_TRUE(disk.isThere()) << "this user may not mount anything";
    for (const char* older : {"", "older"}) {
        const std::string path = tools.at("small/Rotated.mp4");
        if (*older != '\0')
            writeFile(path, older);
        ToolProcess creator(tools.creator(), fixFlag(path));
        EXPECT_EQ(creator.wait(), 1);
        EXPECT_NE(creator.errorText().find("No space left"), std::string::npos) << creator.errorText();
        EXPECT_EQ(namesIn(tools.at("small")), *older == '\0' ? Names() : Names({previous}));
    }
}

TEST_F(CreatorCopyTest, aFileThatMayNotGetSoLargeIsAFailure)
{
    ToolSetup setup;
    setup.largestFile = 100000;
    ToolProcess creator(tools.creator(), fixFlag(), setup);
    EXPECT_EQ(creator.wait(), 1);
    EXPECT_EQ(otherNames(), Names());
}

TEST_F(CreatorCopyTest, anOutputOnAnotherFileSystemIsCopiedTo)
{
    std::filesystem::create_directory(tools.at("disk"));
    const SmallDisk disk(tools.at("disk"), 20000);
    ASSERT_TRUE(disk.isThere()) << "this user may not mount anything";
    EXPECT_EQ(run(fixFlag(tools.at("disk/Rotated.mp4"))), 0);
    EXPECT_EQ(
        withoutMatrices(contentsOf(tools.at("disk/Rotated.mp4"))), withoutMatrices(contentsOf(input())));
}

TEST_F(CreatorCopyTest, aHiddenFileTakesTheCopyWhereFilesNeedAName)
{
    ToolSetup setup;
    setup.refused = {RefusedCall::OpenNameless, RefusedCall::CopyFileRange};
    ToolProcess creator(tools.creator(), fixFlag(), setup);
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_EQ(withoutMatrices(contentsOf(output())), withoutMatrices(contentsOf(input())));
    EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
}

TEST_F(CreatorCopyTest, theInputsOwnPlacePutsItAside)
{
    expectInputAt(tools.at("clip (original).mp4"));
    const std::string before = contentsOf(input());
    EXPECT_EQ(run(fixFlag(tools.at("./clip.mp4"))), 0);
    EXPECT_NE(contentsOf(input()), before);
    EXPECT_EQ(withoutMatrices(contentsOf(input())), withoutMatrices(before));
}

TEST_F(CreatorCopyTest, aSparseFileOfFiveGigabytesStaysSparse)
{
    constexpr std::uint64_t dataSize = 5'000'000'000;
    const std::string begin
        = fileType() + movieBox(track("vide")) + bigEndian(1, 4) + "mdat" + bigEndian(dataSize, 8);
    const std::string path = tools.at("sparse.mp4");
    writeFile(path, begin);
    ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(begin.size() + dataSize - 16)), 0);
    auto arguments = fixFlag();
    arguments[1] = path;
    EXPECT_EQ(run(arguments), 0);
    struct stat status = {};
    ASSERT_EQ(::stat(output().c_str(), &status), 0);
    EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), begin.size() + dataSize - 16);
    EXPECT_LT(status.st_blocks * 512, 1 << 20);
}

} // namespace tarnwell::test
