// SPDX-License-Identifier: MIT
#include "platform/TemporaryDirectory.h"
#include "probe/HumanReadable.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace tarnwell::test
{

/// Compares both sizes of one file and the printed line.
class FileSizeTest : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return m_folder.path() + name; }

    void expectSizes(
        const std::string& name, std::uint64_t bytes, const std::string& text, const std::string& line)
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(fileSize(path(name)), bytes);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
        testing::internal::CaptureStdout();
        EXPECT_EQ(humanFileSize(path(name)), text);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
    }

    void expectNoSize(const std::string& name, const std::string& line)
    {
        expectSizes(name, 0, "Unknown File Size", line + "\n");
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(FileSizeTest, aFileHasItsSizeInBytesAndInWords)
{
    writeFile(path("clip"), std::string(1500, 'x'));
    expectSizes("clip", 1500, "2 KB", "");
}

TEST_F(FileSizeTest, anEmptyFileIsZero)
{
    writeFile(path("clip"), "");
    expectSizes("clip", 0, "Zero KB", "");
}

TEST_F(FileSizeTest, aLargeFileHasItsSizeInBytesAndInWords)
{
    writeFile(path("clip"), "");
    std::filesystem::resize_file(path("clip"), 12300000000); // sparse
    expectSizes("clip", 12300000000, "12.3 GB", "");
}

TEST_F(FileSizeTest, aMissingFileIsUnknownAndPrintsWhy)
{
    expectNoSize("missing",
        "Failed to get file attributes for local path: " + path("missing")
            + " with error: No such file or directory");
}

TEST_F(FileSizeTest, aFileBelowAFileIsUnknownAndPrintsWhy)
{
    writeFile(path("clip"), "");
    expectNoSize("clip/below",
        "Failed to get file attributes for local path: " + path("clip/below")
            + " with error: Not a directory");
}

TEST_F(FileSizeTest, aPipeHasNoSizeAndPrintsIt)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    expectNoSize("pipe", "Failed to get a size attribute from path: " + path("pipe"));
}

TEST_F(FileSizeTest, aDeviceHasNoSizeAndPrintsIt)
{
    std::filesystem::create_symlink("/dev/null", path("device"));
    expectNoSize("device", "Failed to get a size attribute from path: " + path("device"));
}

TEST_F(FileSizeTest, aPathThatIsNoUtf8IsPrintedAsItIs)
{
    expectNoSize("\xFF\xFE",
        "Failed to get file attributes for local path: " + path("\xFF\xFE")
            + " with error: No such file or directory");
}

} // namespace tarnwell::test
