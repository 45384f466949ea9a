// SPDX-License-Identifier: MIT
// Saves on file systems that do not support that a written file is read and changed. A preloaded library
// refuses the calls (tests/faults/fileServer.cpp).
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"
#include "tests/tools/RefusedCall.h"
#include "tests/tools/SmallDisk.h"
#include "tools/TemporaryFile.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace tarnwell::test
{

class FileServerTest : public CreatorTest
{
protected:
    ToolSetup setup(const Words& variables = {})
    {
        ToolSetup result;
        result.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER
                            "/tests/libfailingCalls.so:" TARNWELL_BUILD_FOLDER "/tests/libfileServer.so",
            "TMPDIR=" + m_temporary.path()};
        result.variables.insert(result.variables.end(), variables.begin(), variables.end());
        return result;
    }

    void expectNoTemporaryFile() const { EXPECT_EQ(namesIn(m_temporary.path()), Words()); }

    TemporaryDirectory m_temporary;
};

TEST_F(FileServerTest, aConversionIsFinishedInATemporaryFile)
{
    setGoodFfmpeg();
    for (const auto& arguments : {transcode(), fixFlag()}) {
        EXPECT_EQ(run(arguments, setup()), 0) << lastRun().errorText();
        EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
        EXPECT_EQ(contentsOf(output()).size(), movie().size());
    }
    expectNoTemporaryFile();
}

TEST_F(FileServerTest, aByteCopyIsFinishedInATemporaryFile)
{
    setInput(movieOf(3 << 20));
    EXPECT_EQ(run(fixFlag(), setup()), 0) << lastRun().errorText();
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()).size(), contentsOf(input()).size());
    EXPECT_TRUE(contentsOf(output()).substr(1 << 20) == contentsOf(input()).substr(1 << 20));
    expectNoTemporaryFile();
}

TEST_F(FileServerTest, statusLinesAreRepeatedDuringTheCopyToTheServer)
{
    constexpr std::size_t pieces = 3; // of 1 MiB, for each of which the slow server needs half a second
    setInput(movieOf(pieces << 20));
    EXPECT_EQ(run(fixFlag(), setup({"TARNWELL_SLOW_SERVER=1"})), 0) << lastRun().errorText();
    const auto& lines = lastRun().errors();
    ASSERT_GT(lines.size(), pieces);
    EXPECT_TRUE(lines.back().starts_with("time=")) << lines.back();
    EXPECT_GE(std::count(lines.begin(), lines.end(), lines.back()), std::ptrdiff_t(pieces));
}

TEST_F(FileServerTest, theOlderFileIsReplacedInTheUsualSteps)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    EXPECT_EQ(run(transcode(), setup()), 0) << lastRun().errorText();
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    EXPECT_TRUE(contentsOf(output()) == movie());
}

TEST_F(FileServerTest, aFailedCopyLeavesTheOlderFileOnly)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    EXPECT_EQ(run(transcode(), setup({"TARNWELL_FULL_SERVER=1"})), 1);
    expectError("tarnwell: the output could not be written to the disk: No space left on device\n");
    expectOnlyOlderFile();
    expectNoTemporaryFile();
}

TEST_F(FileServerTest, aCancelAfterTheCopyLeavesTheOlderFileOnly)
{
    setGoodFfmpeg();
    for (const std::string variable : {"TARNWELL_FSYNC_WAITS_FOR", "TARNWELL_FOLDER_FSYNC_WAITS_FOR"}) {
        SCOPED_TRACE(variable);
        writeFile(output(), "older");
        const std::string goOn = tools.addData("go on", "");
        std::filesystem::remove(goOn);
        std::filesystem::remove(goOn + ".waiting");
        ToolProcess creator(tools.creator(), transcode(), setup({variable + "=" + goOn}));
        ASSERT_TRUE(waitForFile(goOn + ".waiting"));
        creator.signal(SIGTERM);
        writeFile(goOn, "");
        EXPECT_EQ(creator.wait(), cancelled);
        expectOnlyOlderFile();
    }
}

TEST_F(FileServerTest, aFileOfTheSameSizeThatTakesThePathIsKept)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    const std::string goOn = tools.addData("go on", "");
    std::filesystem::remove(goOn);
    // The second renameat2 is the one that moves the new file to its path.
    ToolProcess creator(
        tools.creator(), transcode(), setup({"TARNWELL_FAILS=renameat2 2", "TARNWELL_WAITS_FOR=" + goOn}));
    ASSERT_TRUE(waitForFile(goOn + ".waiting"));
    const std::string another(movie().size(), 'a');
    writeFile(output(), another);
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), 1);
    EXPECT_EQ(contentsOf(tools.at("Rotated (previous).mp4")), "older");
    EXPECT_EQ(contentsOf(tools.at("Rotated (previous 2).mp4")), another);
}

TEST_F(FileServerTest, aFolderThatCannotHoldTheTemporaryFileIsNotUsed)
{
    setGoodFfmpeg();
    for (const char* folder : {"TMPDIR=/nowhere", "TMPDIR=/proc", "TMPDIR="}) {
        EXPECT_EQ(run(transcode(), setup({folder})), 0) << folder << ": " << lastRun().errorText();
        EXPECT_TRUE(contentsOf(output()) == movie());
    }
}

class TemporaryFileTest : public testing::Test
{
protected:
    /// Whether a temporary file is in the folder of TMPDIR, has no name there and can be read and written.
    bool isCreated() const
    {
        ::setenv("TMPDIR", m_folder.path().c_str(), 1);
        const int file = createTemporaryFile();
        const std::string link = "/proc/self/fd/" + std::to_string(file);
        char byte = 'a';
        const bool isUsable = ::pwrite(file, &byte, 1, 0) == 1 && ::pread(file, &byte, 1, 0) == 1;
        const bool isHere
            = std::filesystem::read_symlink(link).string().starts_with(m_folder.path()) && isUsable;
        ::close(file);
        return isHere && namesIn(m_folder.path()).empty();
    }

    static bool isInFolderOfSystem(int file)
    {
        const std::string path
            = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file)).string();
        const std::string folder = path.substr(0, path.rfind('/'));
        return folder == "/tmp" || folder == "/var/tmp";
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(TemporaryFileTest, hasNoName)
{
    EXPECT_TRUE(holdsInChild([this] { return isCreated(); }));
    EXPECT_TRUE(holdsWithout(RefusedCall::OpenNameless, [this] { return isCreated(); }));
}

TEST_F(TemporaryFileTest, isInAFolderOfTheSystemWithoutTmpdir)
{
    EXPECT_TRUE(holdsInChild([] {
        ::unsetenv("TMPDIR");
        return isInFolderOfSystem(createTemporaryFile());
    }));
}

TEST_F(TemporaryFileTest, isNotInAFullFolder)
{
    const TemporaryDirectory folder;
    const SmallDisk disk(folder.path(), 1024);
    ASSERT_TRUE(disk.isThere()) << "this user may not mount anything";
    EXPECT_TRUE(holdsInChild([&folder] {
        ::setenv("TMPDIR", folder.path().c_str(), 1);
        return isInFolderOfSystem(createTemporaryFile());
    }));
}

TEST_F(TemporaryFileTest, isMissingIfNoFolderCanHoldIt)
{
    EXPECT_TRUE(holdsInChild([] {
        const rlimit none = {};
        return ::setrlimit(RLIMIT_NOFILE, &none) == 0 && createTemporaryFile() == -1 && errno == EMFILE;
    }));
}

} // namespace tarnwell::test
