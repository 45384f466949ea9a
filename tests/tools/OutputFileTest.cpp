// SPDX-License-Identifier: MIT
// Output files that appear complete or not at all.
#include "tools/OutputFile.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/RefusedCall.h"
#include "tools/HiddenFiles.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;

void write(const OutputFile& file, const std::string& text)
{
    // A child process opens the file by this path.
    const int descriptor = ::open(file.writablePath().c_str(), O_WRONLY | O_TRUNC);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(::write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    ::close(descriptor);
}

class Mask
{
public:
    explicit Mask(mode_t mask)
        : m_old(::umask(mask))
    {
    }
    ~Mask() { ::umask(m_old); }
    Mask(const Mask&) = delete;
    Mask& operator=(const Mask&) = delete;

private:
    mode_t m_old;
};

mode_t modeOf(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

} // namespace

bool finish(OutputFile& file)
{
    return file.sync() && file.putOlderAside() && file.moveToPath()
        && (!file.hasOlder() || file.deleteOlder());
}

off_t sizeOf(const OutputFile& file)
{
    return ::lseek(file.descriptor(), 0, SEEK_END);
}

class OutputFileTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return m_folder.path() + name; }
    const std::string& folder() const { return m_folder.path(); }

private:
    TemporaryDirectory m_folder;
};

TEST_F(OutputFileTest, nothingIsThereBeforeItIsFinished)
{
    OutputFile file(at("out.mp4"));
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(sizeOf(file), 0);
    write(file, "some");
    EXPECT_GT(sizeOf(file), 0);
    EXPECT_FALSE(exists(at("out.mp4")));
    EXPECT_EQ(namesIn(folder()), Names());
}

TEST_F(OutputFileTest, whatIsFinishedIsThereAlone)
{
    OutputFile file(at("out.mp4"));
    write(file, "whole");
    EXPECT_TRUE(finish(file));
    EXPECT_EQ(contentsOf(at("out.mp4")), "whole");
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(OutputFileTest, whatIsFinishedStaysWhenTheObjectGoes)
{
    {
        OutputFile file(at("out.mp4"));
        write(file, "whole");
        EXPECT_TRUE(finish(file));
    }
    EXPECT_EQ(contentsOf(at("out.mp4")), "whole");
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(OutputFileTest, whatIsNotFinishedLeavesNothing)
{
    {
        const OutputFile file(at("out.mp4"));
        write(file, "some");
    }
    EXPECT_EQ(namesIn(folder()), Names());
}

TEST_F(OutputFileTest, anOlderFileStaysUntouchedUntilThen)
{
    writeFile(at("out.mp4"), "older");
    const auto time = std::filesystem::last_write_time(at("out.mp4"));
    {
        const OutputFile abandoned(at("out.mp4"));
        write(abandoned, "some");
        EXPECT_EQ(contentsOf(at("out.mp4")), "older");
    }
    EXPECT_EQ(contentsOf(at("out.mp4")), "older");
    EXPECT_EQ(std::filesystem::last_write_time(at("out.mp4")), time);
    {
        OutputFile file(at("out.mp4"));
        write(file, "newer");
        EXPECT_EQ(contentsOf(at("out.mp4")), "older");
        EXPECT_TRUE(finish(file));
        EXPECT_EQ(contentsOf(at("out.mp4")), "newer");
    }
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(OutputFileTest, whoHasTheOlderFileOpenKeepsIt)
{
    writeFile(at("out.mp4"), "older");
    const int reader = ::open(at("out.mp4").c_str(), O_RDONLY);
    OutputFile file(at("out.mp4"));
    write(file, "newer and longer");
    EXPECT_TRUE(finish(file));
    std::string text(5, '\0');
    EXPECT_EQ(::read(reader, text.data(), text.size()), 5);
    EXPECT_EQ(text, "older");
    ::close(reader);
}

TEST_F(OutputFileTest, anOlderFileIsPutAsideUntilItIsDeleted)
{
    writeFile(at("out.mp4"), "older");
    OutputFile file(at("out.mp4"));
    write(file, "newer");
    EXPECT_FALSE(file.hasOlder());
    EXPECT_TRUE(file.sync() && file.putOlderAside() && file.moveToPath());
    EXPECT_TRUE(file.hasOlder());
    EXPECT_EQ(contentsOf(at("out.mp4")), "newer");
    EXPECT_EQ(contentsOf(at("out (previous).mp4")), "older");
    EXPECT_TRUE(file.deleteOlder());
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(OutputFileTest, anUndoneMoveGivesTheOlderFileItsNameBack)
{
    writeFile(at("out.mp4"), "older");
    {
        OutputFile file(at("out.mp4"));
        write(file, "newer");
        EXPECT_TRUE(file.sync() && file.putOlderAside() && file.moveToPath());
        EXPECT_TRUE(file.undoMove());
    }
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
    EXPECT_EQ(contentsOf(at("out.mp4")), "older");
}

TEST_F(OutputFileTest, anUndoneMoveReplacesNoOtherFileByTheOlderOne)
{
    writeFile(at("out.mp4"), "older");
    OutputFile file(at("out.mp4"));
    write(file, "newer");
    EXPECT_TRUE(file.sync() && file.putOlderAside());
    writeFile(at("out.mp4"), "of another program");
    EXPECT_FALSE(file.moveToPath());
    EXPECT_FALSE(file.undoMove());
    EXPECT_EQ(contentsOf(at("out.mp4")), "of another program");
    EXPECT_EQ(contentsOf(at("out (previous).mp4")), "older");
}

TEST_F(OutputFileTest, anUndoneMoveLeavesNothingWithoutAnOlderFile)
{
    OutputFile file(at("out.mp4"));
    write(file, "newer");
    EXPECT_TRUE(finish(file));
    EXPECT_TRUE(file.undoMove());
    EXPECT_EQ(namesIn(folder()), Names());
}

TEST_F(OutputFileTest, anUndoneMoveKeepsAFileThatHasReplacedThisOne)
{
    OutputFile file(at("out.mp4"));
    write(file, "newer");
    EXPECT_TRUE(finish(file));
    writeFile(at("another"), "newer");
    std::filesystem::rename(at("another"), at("out.mp4"));
    EXPECT_TRUE(file.undoMove());
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(OutputFileTest, aLinkIsReplacedAndNotWrittenThrough)
{
    writeFile(at("original.mp4"), "original");
    std::filesystem::create_symlink(at("original.mp4"), at("link.mp4"));
    std::filesystem::create_hard_link(at("original.mp4"), at("hard.mp4"));
    for (const char* name : {"link.mp4", "hard.mp4"}) {
        OutputFile file(at(name));
        write(file, "new");
        EXPECT_TRUE(finish(file));
        EXPECT_EQ(contentsOf(at(name)), "new");
        EXPECT_FALSE(std::filesystem::is_symlink(at(name)));
    }
    EXPECT_EQ(contentsOf(at("original.mp4")), "original");
}

TEST_F(OutputFileTest, theModeFollowsTheUsersMask)
{
    for (const mode_t mask : {0022U, 0077U, 0002U, 0000U}) {
        const Mask set(mask);
        OutputFile file(at("out.mp4"));
        EXPECT_TRUE(finish(file));
        EXPECT_EQ(modeOf(at("out.mp4")), 0666U & ~mask) << std::oct << mask;
        std::filesystem::remove(at("out.mp4"));
    }
}

TEST_F(OutputFileTest, emptyingThrowsAwayWhatWasWritten)
{
    OutputFile file(at("out.mp4"));
    write(file, "the first attempt");
    file.empty();
    EXPECT_EQ(sizeOf(file), 0);
    write(file, "second");
    EXPECT_TRUE(finish(file));
    EXPECT_EQ(contentsOf(at("out.mp4")), "second");
}

TEST_F(OutputFileTest, isNotOpenWithoutAFolder)
{
    const OutputFile file(at("nowhere/out.mp4"));
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(namesIn(folder()), Names());
}

TEST_F(OutputFileTest, cannotBeFinishedWhenTheFolderHasGone)
{
    std::filesystem::create_directory(at("there"));
    OutputFile file(at("there/out.mp4"));
    write(file, "whole");
    std::filesystem::remove_all(at("there"));
    EXPECT_FALSE(finish(file));
    EXPECT_EQ(namesIn(folder()), Names());
}

TEST_F(OutputFileTest, cannotBeFinishedOverAFolderAndLeavesNothing)
{
    std::filesystem::create_directory(at("out.mp4"));
    writeFile(at("out.mp4/kept"), "kept");
    {
        OutputFile file(at("out.mp4"));
        write(file, "whole");
        EXPECT_FALSE(finish(file));
    }
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
    EXPECT_EQ(contentsOf(at("out.mp4/kept")), "kept");
}

TEST_F(OutputFileTest, namesOfAnyBytesAreKept)
{
    for (const std::string name :
        {"-y", "%d.mp4", "a b.mp4", "new\nline.mp4", "\xFF\xFE.mp4", "\xC3\xA4.mp4", "file:x"}) {
        OutputFile file(at(name));
        write(file, name);
        EXPECT_TRUE(finish(file));
        EXPECT_EQ(contentsOf(at(name)), name);
    }
}

TEST_F(OutputFileTest, twoFilesForOnePlaceAreBothWhole)
{
    {
        OutputFile first(at("out.mp4"));
        OutputFile second(at("out.mp4"));
        write(first, "first");
        write(second, "second");
        EXPECT_TRUE(finish(first));
        EXPECT_TRUE(finish(second));
    }
    EXPECT_EQ(contentsOf(at("out.mp4")), "second");
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(OutputFileTest, hasAHiddenNameWhereItCannotBeNameless)
{
    writeFile(at("out.mp4"), "older");
    EXPECT_TRUE(holdsWithout(RefusedCall::OpenNameless, [this] {
        OutputFile file(at("out.mp4"));
        write(file, "whole");
        const Names names = namesIn(folder());
        const bool isHidden = names.size() == 2 && isHiddenName(names[0]) && names[1] == "out.mp4";
        return file.isOpen() && isHidden && contentsOf(at("out.mp4")) == "older" && finish(file);
    }));
    EXPECT_EQ(contentsOf(at("out.mp4")), "whole");
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(OutputFileTest, aHiddenNameGoesWithWhatIsNotFinished)
{
    EXPECT_TRUE(holdsWithout(RefusedCall::OpenNameless, [this] {
        const OutputFile file(at("out.mp4"));
        write(file, "some");
        return file.isOpen();
    }));
    EXPECT_EQ(namesIn(folder()), Names());
}

TEST_F(OutputFileTest, theModeOfAHiddenOneFollowsTheUsersMaskToo)
{
    const Mask set(0027U);
    EXPECT_TRUE(holdsWithout(RefusedCall::OpenNameless, [this] {
        OutputFile file(at("out.mp4"));
        return finish(file);
    }));
    EXPECT_EQ(modeOf(at("out.mp4")), 0640U);
}

} // namespace tarnwell::test
