// SPDX-License-Identifier: MIT
// Output paths that lead to the input. Each test ends with a check that the bytes of the input have not
// changed.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnwell::test
{

class CreatorInputTest : public CreatorTest
{
protected:
    /// An ffmpeg that succeeds, one that fails after it has written, and one that is cancelled.
    Words scripts()
    {
        const std::string whole = writing(movie());
        return {whole, whole + "exit 1\n", whole + "die " + std::to_string(SIGKILL) + "\n"};
    }
};

TEST_F(CreatorInputTest, aSymbolicLinkToItIsReplaced)
{
    for (const auto& script : scripts()) {
        tools.setFfmpeg(script);
        std::filesystem::remove(output());
        std::filesystem::create_symlink(input(), output());
        const int status = run(transcode());
        EXPECT_EQ(std::filesystem::is_symlink(output()), status != 0);
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
    EXPECT_EQ(std::filesystem::hard_link_count(input()), 4U); // all three are renamed
    EXPECT_TRUE(exists(tools.at("Rotated (original).mp4")));
}

TEST_F(CreatorInputTest, aLinkAsInputLeadsToTheFileThatIsRenamed)
{
    expectInputAt(originalPath());
    std::filesystem::create_directory(tools.at("links"));
    std::filesystem::create_symlink(input(), tools.at("links/opened.mp4"));
    std::filesystem::create_symlink(input(), tools.at("opened.mp4"));
    for (const std::string& link : {tools.at("opened.mp4"), tools.at("links/opened.mp4")}) {
        for (const auto& arguments :
            {transcode(link, input()), fixFlagCommand(link, input()), stillCommand("1", link, input())}) {
            for (const auto& script : scripts()) {
                tools.setFfmpeg(script);
                run(arguments);
                ASSERT_TRUE(exists(originalPath()));
                EXPECT_NE(contentsOf(input()), contentsOf(originalPath()));
                std::filesystem::remove(input());
                std::filesystem::rename(originalPath(), input());
            }
        }
    }
    std::filesystem::rename(input(), originalPath());
}

TEST_F(CreatorInputTest, anOutputAtItsPathThroughALinkedFolderRenamesIt)
{
    std::filesystem::create_directory_symlink(tools.videos(), tools.at("linked"));
    expectInputAt(originalPath());
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(input(), tools.at("linked/clip.mp4"))), 0);
    EXPECT_EQ(contentsOf(input()), movie());
    EXPECT_EQ(namesIn(tools.videos()), Words({"clip (original).mp4", "clip.mp4", "linked"}));
}

TEST_F(CreatorInputTest, ffmpegReadsItUnderItsNewName)
{
    expectInputAt(originalPath());
    setGoodFfmpeg("say-arguments\n");
    EXPECT_EQ(run(transcode(input(), tools.at("./clip.mp4"))), 0);
    const auto words = lastRun().saidInHex("argument ");
    EXPECT_EQ(std::count(words.begin(), words.end(), "file:" + tools.at("./clip (original).mp4")), 1);
}

TEST_F(CreatorInputTest, itIsRenamedEvenIfFfmpegFails)
{
    expectInputAt(originalPath());
    tools.setFfmpeg("exit 1\n");
    EXPECT_EQ(run(transcode(input(), tools.at("./clip.mp4"))), 1);
    EXPECT_EQ(namesIn(tools.videos()), Words({"clip (original).mp4"}));
}

TEST_F(CreatorInputTest, anEarlierRenamedFileIsKept)
{
    writeFile(originalPath(), "an earlier one");
    expectInputAt(tools.at("clip (original 2).mp4"));
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(input(), tools.at("./clip.mp4"))), 0);
    EXPECT_EQ(contentsOf(originalPath()), "an earlier one");
}

TEST_F(CreatorInputTest, aStillAtItsPathDoesNotReplaceIt)
{
    setGoodFfmpeg();
    expectInputAt(originalPath());
    run(still("1", tools.at("./clip.mp4")));
}

TEST_F(CreatorInputTest, aPipeWithANameIsRefusedInsteadOfWaitedFor)
{
    tools.setFfmpeg("hang\n");
    tools.setFfprobe("hang\n");
    const std::string pipe = tools.at("pipe.mp4");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(run(transcode(pipe, output())), 1);
    EXPECT_FALSE(exists(output()));
    EXPECT_EQ(run(stillCommand("1", pipe, output())), 0);
    EXPECT_FALSE(contentsOf(output()).empty()); // the placeholder picture
}

TEST_F(CreatorInputTest, aMissingInputIsAFailure)
{
    tools.setFfmpeg("exit 1\n");
    EXPECT_EQ(run(transcode(tools.at("none.mp4"), output())), 1);
    EXPECT_EQ(otherNames(), Words());
}

} // namespace tarnwell::test
