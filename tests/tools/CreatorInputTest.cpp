// SPDX-License-Identifier: MIT
// An output path that leads to the input. That the input keeps its bytes is what each test looks at in its
// end.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;

} // namespace

class CreatorInputTest : public CreatorTest
{
protected:
    /// An ffmpeg that works, then one that fails after it has written, then one that is cancelled.
    std::vector<std::string> scripts()
    {
        const std::string writing = "write-output-file " + tools.addData("movie", movie()) + "\n";
        return {writing, writing + "exit 1\n", writing + "die " + std::to_string(SIGKILL) + "\n"};
    }
};

TEST_F(CreatorInputTest, aSymbolicLinkToItIsReplaced)
{
    for (const auto& script : scripts()) {
        tools.setFfmpeg(script);
        std::filesystem::remove(output());
        std::filesystem::create_symlink(input(), output());
        run(transcode());
        EXPECT_FALSE(std::filesystem::is_symlink(output()));
    }
}

TEST_F(CreatorInputTest, aHardLinkToItIsReplaced)
{
    for (const auto& script : scripts()) {
        tools.setFfmpeg(script);
        std::filesystem::remove(output());
        std::filesystem::create_hard_link(input(), output());
        const int status = run(transcode());
        EXPECT_EQ(exists(output()), status == 0);
    }
    EXPECT_EQ(std::filesystem::hard_link_count(input()), 4U); // all three are put aside
    EXPECT_TRUE(exists(tools.at("Rotated (original).mp4")));
}

TEST_F(CreatorInputTest, aLinkThatWasOpenedLeadsToTheOriginalThatIsPutAside)
{
    const std::string aside = tools.at("clip (original).mp4");
    expectInputAt(aside);
    std::filesystem::create_directory(tools.at("links"));
    std::filesystem::create_symlink(input(), tools.at("links/opened.mp4"));
    std::filesystem::create_symlink(input(), tools.at("opened.mp4"));
    for (const std::string& link : {tools.at("opened.mp4"), tools.at("links/opened.mp4")}) {
        const auto flag = std::vector<std::string>{
            "-i", link, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=90", "-y", input()};
        const auto picture = std::vector<std::string>{
            "-v", "quiet", "-ss", "1", "-i", link, "-frames:v", "1", "-y", input()};
        for (const auto& arguments : {transcode(link, input()), flag, picture}) {
            for (const auto& script : scripts()) {
                tools.setFfmpeg(script);
                run(arguments);
                ASSERT_TRUE(exists(aside));
                EXPECT_NE(contentsOf(input()), contentsOf(aside));
                std::filesystem::remove(input());
                std::filesystem::rename(aside, input());
            }
        }
    }
    std::filesystem::rename(input(), aside);
}

TEST_F(CreatorInputTest, itsOwnPlaceThroughALinkedFolderPutsItAside)
{
    std::filesystem::create_directory_symlink(tools.videos(), tools.at("linked"));
    expectInputAt(tools.at("clip (original).mp4"));
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(input(), tools.at("linked/clip.mp4"))), 0);
    EXPECT_EQ(contentsOf(input()), movie());
    EXPECT_EQ(namesIn(tools.videos()), Names({"clip (original).mp4", "clip.mp4", "linked"}));
}

TEST_F(CreatorInputTest, ffmpegReadsItUnderItsNewName)
{
    expectInputAt(tools.at("clip (original).mp4"));
    setGoodFfmpeg("say-arguments\n");
    ToolProcess creator(tools.creator(), transcode(input(), tools.at("./clip.mp4")));
    EXPECT_EQ(creator.wait(), 0);
    const auto words = creator.saidInHex("argument ");
    EXPECT_EQ(std::count(words.begin(), words.end(), "file:" + tools.at("./clip (original).mp4")), 1);
}

TEST_F(CreatorInputTest, itIsPutAsideEvenWhereFfmpegFails)
{
    expectInputAt(tools.at("clip (original).mp4"));
    tools.setFfmpeg("exit 1\n");
    EXPECT_EQ(run(transcode(input(), tools.at("./clip.mp4"))), 1);
    EXPECT_EQ(namesIn(tools.videos()), Names({"clip (original).mp4"}));
}

TEST_F(CreatorInputTest, itIsPutAsideBesideAnEarlierOne)
{
    writeFile(tools.at("clip (original).mp4"), "an earlier one");
    expectInputAt(tools.at("clip (original 2).mp4"));
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(input(), tools.at("./clip.mp4"))), 0);
    EXPECT_EQ(contentsOf(tools.at("clip (original).mp4")), "an earlier one");
}

TEST_F(CreatorInputTest, aStillAtItsPlaceDoesNotReplaceIt)
{
    setGoodFfmpeg();
    expectInputAt(tools.at("clip (original).mp4"));
    run({"-v", "quiet", "-ss", "1", "-i", input(), "-frames:v", "1", "-y", tools.at("./clip.mp4")});
}

TEST_F(CreatorInputTest, aPipeWithANameIsRefusedInsteadOfWaitedFor)
{
    tools.setFfmpeg("hang\n");
    tools.setFfprobe("hang\n");
    const std::string pipe = tools.at("pipe.mp4");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(run(transcode(pipe, output())), 1);
    EXPECT_FALSE(exists(output()));
    EXPECT_EQ(run({"-v", "quiet", "-ss", "1", "-i", pipe, "-frames:v", "1", "-y", output()}), 0);
    EXPECT_FALSE(contentsOf(output()).empty()); // the placeholder picture
}

TEST_F(CreatorInputTest, anInputThatIsNotThereIsAFailure)
{
    tools.setFfmpeg("exit 1\n");
    EXPECT_EQ(run(transcode(tools.at("none.mp4"), output())), 1);
    EXPECT_EQ(otherNames(), Names());
}

} // namespace tarnwell::test
