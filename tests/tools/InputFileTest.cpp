// SPDX-License-Identifier: MIT
#include "tools/InputFile.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace tarnwell::test
{

class InputFileTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return m_folder.path() + name; }

    /// Creates the file with a modification time in the past, so that every later write changes the time.
    std::string madeFile(const std::string& name, const std::string& bytes) const
    {
        writeFile(at(name), bytes);
        std::filesystem::last_write_time(at(name), past);
        return at(name);
    }

    const std::filesystem::file_time_type past
        = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);

private:
    TemporaryDirectory m_folder;
};

TEST_F(InputFileTest, aFileThatIsOnlyReadAndRenamedIsUnchanged)
{
    const InputFile file(madeFile("clip.mp4", "a video"));
    EXPECT_EQ(contentsOf(at("clip.mp4")), "a video");
    EXPECT_TRUE(file.isUnchanged());
    std::filesystem::rename(at("clip.mp4"), at("renamed.mp4"));
    std::filesystem::rename(madeFile("other.mp4", "a longer video"), at("clip.mp4"));
    EXPECT_TRUE(file.isUnchanged());
}

TEST_F(InputFileTest, everyWriteIsAChange)
{
    const std::string path = madeFile("clip.mp4", "a video");
    const InputFile file(path);
    std::filesystem::last_write_time(path, past + std::chrono::nanoseconds(1000));
    EXPECT_FALSE(file.isUnchanged());
    std::filesystem::last_write_time(path, past);
    EXPECT_TRUE(file.isUnchanged());
    std::filesystem::resize_file(path, 3);
    std::filesystem::last_write_time(path, past);
    EXPECT_FALSE(file.isUnchanged());
}

TEST_F(InputFileTest, isOpenedAgainByTheNewPathOfTheSameFileOnly)
{
    InputFile file(madeFile("clip.mp4", "a video"));
    std::filesystem::copy(at("clip.mp4"), at("copy.mp4"));
    EXPECT_FALSE(file.reopen(at("copy.mp4"))) << "another modification time";
    EXPECT_FALSE(file.reopen(madeFile("other.mp4", "another video")));
    EXPECT_FALSE(file.reopen(at("nowhere.mp4")));
    std::filesystem::resize_file(at("clip.mp4"), 3);
    EXPECT_FALSE(file.isUnchanged()) << "not the same file";
    std::filesystem::remove(at("clip.mp4"));
    std::filesystem::last_write_time(at("copy.mp4"), past);
    EXPECT_TRUE(file.reopen(at("copy.mp4")));
    EXPECT_TRUE(file.isUnchanged());
}

TEST_F(InputFileTest, aWholeFileIsReadInPieces)
{
    const InputFile file(madeFile("clip.mp4", std::string((3U << 20U) + 1, 'x')));
    int pieces = 0;
    const auto countPieces = [&pieces] { return ++pieces > 0; };
    EXPECT_EQ(file.readToEnd(countPieces), InputFile::ReadEnd::Whole);
    EXPECT_EQ(pieces, 4);
    EXPECT_EQ(file.readToEnd([] { return false; }), InputFile::ReadEnd::Stopped);
}

TEST_F(InputFileTest, aReadErrorIsReported)
{
    const InputFile unreadable("/proc/self/mem"); // a regular file whose first page cannot be read
    ASSERT_TRUE(unreadable.isOpen()) << unreadable.error();
    EXPECT_EQ(unreadable.readToEnd([] { return true; }), InputFile::ReadEnd::Failed);
    EXPECT_EQ(errno, EIO);
}

TEST_F(InputFileTest, onlyARegularFileIsOpened)
{
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    for (const std::string& path : {at("pipe"), at(""), std::string("/dev/null")}) {
        const InputFile file(path);
        EXPECT_FALSE(file.isOpen()) << path;
        EXPECT_TRUE(file.isOtherKind()) << path;
        EXPECT_EQ(file.error(), "not a file");
    }
    const InputFile missing(at("none"));
    EXPECT_FALSE(missing.isOpen());
    EXPECT_FALSE(missing.isOtherKind());
    EXPECT_EQ(missing.error(), "No such file or directory");
}

} // namespace tarnwell::test
