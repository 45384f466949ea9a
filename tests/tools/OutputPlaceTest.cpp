// SPDX-License-Identifier: MIT
// Folders that are replaced during a save, and names that a file system does not accept.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"

#include <climits>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;
namespace fs = std::filesystem;

const std::string library = "LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so";

/// File systems with and without unnamed files.
const std::vector<std::vector<RefusedCall>> refusals = {{}, {RefusedCall::OpenNameless}};

} // namespace

class SwappedFolderTest : public CreatorTest
{
protected:
    /// The replacement of the output's folder at its path during the run of ffmpeg.
    enum class Successor { Folder, Link, Nothing };

    void saveDuringSwap(Successor successor, const std::vector<RefusedCall>& refused, int ffmpegStatus)
    {
        const std::string goOn = tools.at("go on");
        fs::remove(goOn);
        fs::create_directory(tools.at("folder"));
        fs::create_directory(tools.at("other"));
        writeFile(tools.at("folder/out.mp4"), "older");
        writeFile(tools.at("other/out.mp4"), "of another user");
        setGoodFfmpeg("error written\\n\nwait-for " + goOn + "\n");
        if (ffmpegStatus != 0)
            tools.setFfmpeg(
                "error written\\n\nwait-for " + goOn + "\nexit " + std::to_string(ffmpegStatus) + "\n");
        ToolSetup setup;
        setup.refused = refused;
        ToolProcess creator(tools.creator(), transcode(input(), tools.at("folder/out.mp4")), setup);
        creator.waitForError("written");
        fs::rename(tools.at("folder"), tools.at("renamed"));
        if (successor == Successor::Folder)
            fs::rename(tools.at("other"), tools.at("folder"));
        else if (successor == Successor::Link)
            fs::create_symlink(tools.at("other"), tools.at("folder"));
        writeFile(goOn, "");
        EXPECT_EQ(creator.wait(), ffmpegStatus);
    }

    /// Expects the file to be the only one in the moved folder and the other folder to be unchanged. Deletes
    /// both.
    void expectOnlyIn(const std::string& name, const std::string& contents)
    {
        const std::string other = fs::is_directory(tools.at("other")) ? "other" : "folder";
        EXPECT_EQ(namesIn(tools.at(other)), Names({"out.mp4"}));
        EXPECT_EQ(contentsOf(tools.at(other + "/out.mp4")), "of another user");
        EXPECT_EQ(namesIn(tools.at("renamed")), Names({name}));
        EXPECT_EQ(contentsOf(tools.at("renamed/" + name)), contents);
        for (const char* folder : {"folder", "other", "renamed"})
            fs::remove_all(tools.at(folder));
    }
};

TEST_F(SwappedFolderTest, theResultIsInTheFolderThatWasChosen)
{
    for (const auto& refused : refusals) {
        for (const auto successor : {Successor::Folder, Successor::Link, Successor::Nothing}) {
            saveDuringSwap(successor, refused, 0);
            expectOnlyIn("out.mp4", movie());
        }
    }
}

TEST_F(SwappedFolderTest, theOlderFileStaysInTheFolderThatWasChosen)
{
    for (const auto& refused : refusals) {
        for (const auto successor : {Successor::Folder, Successor::Link, Successor::Nothing}) {
            saveDuringSwap(successor, refused, 1);
            expectOnlyIn("out.mp4", "older");
        }
    }
}

class LongNameTest : public CreatorTest
{
protected:
    /// Saves over an older file and returns the exit status.
    int saveOver(const std::string& path, const std::vector<std::string>& variables = {})
    {
        setGoodFfmpeg();
        writeFile(path, "older");
        ToolSetup setup;
        setup.variables = variables;
        ToolProcess creator(tools.creator(), transcode(input(), path), setup);
        return creator.wait();
    }

    /// Runs a save that fails after another program has written a file to the output's path. Returns the
    /// names in its folder, except that of the input.
    Names namesAfterFailure(const std::string& path, const std::vector<std::string>& variables = {})
    {
        const std::string goOn = tools.addData("go on", "");
        fs::remove(goOn);
        tools.setFfmpeg("error ready\\n\nwait-for " + goOn + "\nexit 1\n");
        fs::remove(path);
        ToolSetup setup;
        setup.variables = variables;
        ToolProcess creator(tools.creator(), transcode(input(), path), setup);
        creator.waitForError("ready");
        writeFile(path, "another");
        writeFile(goOn, "");
        EXPECT_EQ(creator.wait(), 1);
        Names names;
        for (const auto& entry : fs::directory_iterator(fs::path(path).parent_path())) {
            if (entry.path() != input())
                names.push_back(entry.path().filename().string());
        }
        return names;
    }
};

TEST_F(LongNameTest, aFileSystemWithShorterNamesIsAskedForThem)
{
    const std::vector<std::string> shortNames = {library, "TARNWELL_LONGEST_NAME=40"};
    const std::string name = std::string(36, 'n') + ".mp4";
    const auto names = namesAfterFailure(tools.at(name), shortNames);
    ASSERT_EQ(names, Names({std::string(25, 'n') + " (previous).mp4"}));
    EXPECT_EQ(contentsOf(tools.at(names[0])), "another");
    fs::remove(tools.at(names[0]));
    EXPECT_EQ(saveOver(tools.at(name), shortNames), 0);
    EXPECT_EQ(otherNames(), Names({name}));
    EXPECT_EQ(contentsOf(tools.at(name)), movie());
}

TEST_F(LongNameTest, aPathAtTheLimitOfPathsIsReplacedAndPutAside)
{
    std::string path = tools.at("");
    while (path.size() < PATH_MAX - 400)
        path += std::string(200, 'f') + "/";
    path += std::string(PATH_MAX - 100 - path.size(), 'f') + "/";
    fs::create_directories(path);
    path += std::string(PATH_MAX - 1 - path.size() - 4, 'n') + ".mp4";
    ASSERT_EQ(path.size(), std::size_t(PATH_MAX - 1));
    EXPECT_EQ(saveOver(path), 0);
    EXPECT_EQ(contentsOf(path), movie());
    const auto names = namesAfterFailure(path);
    ASSERT_EQ(names.size(), 1U);
    EXPECT_TRUE(names[0].ends_with("n (previous).mp4")) << names[0];
    EXPECT_EQ(contentsOf(fs::path(path).parent_path().string() + "/" + names[0]), "another");
}

TEST_F(LongNameTest, anOlderFileStaysWhereAllNamesAreTaken)
{
    writeFile(tools.at("Rotated (previous).mp4"), "1");
    for (int number = 2; number < 1000; ++number)
        writeFile(tools.at("Rotated (previous " + std::to_string(number) + ").mp4"), "");
    EXPECT_EQ(namesAfterFailure(output()).size(), 1000U);
    EXPECT_EQ(contentsOf(output()), "another");
    EXPECT_EQ(saveOver(output()), 1);
    EXPECT_EQ(contentsOf(output()), "older");
    EXPECT_EQ(otherNames().size(), 1000U);
}

class RestrictedFolderTest : public CreatorTest
{
protected:
    int run(const std::vector<std::string>& arguments, const std::vector<RefusedCall>& refused)
    {
        ToolSetup setup;
        setup.refused = refused;
        ToolProcess creator(tools.creator(), arguments, setup);
        const int status = creator.wait();
        m_errors = creator.errorText();
        return status;
    }

    std::string m_errors;
};

TEST_F(RestrictedFolderTest, aFolderThatOnlyAppendsTakesANewFile)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(), {RefusedCall::RemoveNames}), 0);
    EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()), movie());
}

TEST_F(RestrictedFolderTest, aFolderThatOnlyAppendsKeepsAnOlderFileAndSaysSo)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    EXPECT_EQ(run(transcode(), {RefusedCall::RemoveNames}), 1);
    EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()), "older");
    EXPECT_NE(m_errors.find("could not be moved to its path: Operation not permitted"), std::string::npos)
        << m_errors;
}

TEST_F(RestrictedFolderTest, theFileOfAnotherUserInAStickyFolderStays)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can create a file of another user";
    setGoodFfmpeg();
    fs::create_directory(tools.at("sticky"));
    fs::permissions(tools.at("sticky"), fs::perms::all | fs::perms::sticky_bit);
    const std::string path = tools.at("sticky/out.mp4");
    writeFile(path, "older");
    for (const std::string& folder : {tools.videos(), fs::path(tools.creator()).parent_path().string()})
        fs::permissions(folder, fs::perms::owner_all | fs::perms::others_exec);
    const pid_t saving = ::fork();
    if (saving == 0) {
        const auto words = transcode(input(), path);
        std::vector<const char*> arguments = {"creator"};
        for (const auto& word : words)
            arguments.push_back(word.c_str());
        arguments.push_back(nullptr);
        if (::setgid(65534) == 0 && ::setuid(65534) == 0)
            ::execv(tools.creator().c_str(), const_cast<char* const*>(arguments.data()));
        ::_exit(99);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(saving, &status, 0), saving);
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(contentsOf(path), "older");
    EXPECT_EQ(namesIn(tools.at("sticky")), Names({"out.mp4"}));
}

} // namespace tarnwell::test
