// SPDX-License-Identifier: MIT
#include "platform/FileAttributes.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace tarnwell::test
{

class FileAttributesTest : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return m_folder.path() + name; }

    FileAttributes attributes(const std::string& ofPath) const
    {
        return std::get<FileAttributes>(attributesOfItem(ofPath));
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(FileAttributesTest, aFileHasItsSizeInBytes)
{
    writeFile(path("five"), "12345");
    EXPECT_EQ(attributes(path("five")).size, 5U);
    EXPECT_FALSE(attributes(path("five")).isDirectory);
}

TEST_F(FileAttributesTest, anEmptyFileHasTheSizeZero)
{
    writeFile(path("empty"), "");
    EXPECT_EQ(attributes(path("empty")).size, 0U);
}

TEST_F(FileAttributesTest, aSizeBeyond32BitsIsWhole)
{
    constexpr std::uint64_t fiveGibibytes = 5ULL << 30U;
    writeFile(path("large"), "");
    std::filesystem::resize_file(path("large"), fiveGibibytes); // sparse
    EXPECT_EQ(attributes(path("large")).size, fiveGibibytes);
}

TEST_F(FileAttributesTest, aLinkHasTheAttributesOfItsTarget)
{
    writeFile(path("five"), "12345");
    std::filesystem::create_symlink(path("five"), path("link"));
    EXPECT_EQ(attributes(path("link")).size, 5U);
}

TEST_F(FileAttributesTest, aFolderIsADirectoryAndNoFile)
{
    EXPECT_TRUE(attributes(path("")).isDirectory);
    EXPECT_FALSE(isExistingFile(path("")));
}

TEST_F(FileAttributesTest, aPipeHasNoSize)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(attributes(path("pipe")).size);
    EXPECT_FALSE(attributes(path("pipe")).isDirectory);
    EXPECT_TRUE(isExistingFile(path("pipe")));
}

TEST_F(FileAttributesTest, aDeviceHasNoSize)
{
    EXPECT_FALSE(attributes("/dev/null").size);
}

TEST_F(FileAttributesTest, aMissingItemGivesTheSystemsReason)
{
    EXPECT_EQ(std::get<std::string>(attributesOfItem(path("missing"))), "No such file or directory");
    EXPECT_FALSE(isExistingFile(path("missing")));
}

TEST_F(FileAttributesTest, aFileTakenForAFolderGivesTheSystemsReason)
{
    writeFile(path("file"), "");
    EXPECT_EQ(std::get<std::string>(attributesOfItem(path("file/below"))), "Not a directory");
}

TEST_F(FileAttributesTest, anEmptyPathIsMissing)
{
    EXPECT_EQ(std::get<std::string>(attributesOfItem("")), "No such file or directory");
}

TEST_F(FileAttributesTest, aDanglingLinkIsMissing)
{
    std::filesystem::create_symlink(path("missing"), path("link"));
    EXPECT_FALSE(isExistingFile(path("link")));
}

TEST_F(FileAttributesTest, aNameThatIsNoUtf8IsFound)
{
    writeFile(path("\xFF\xFE clip"), "123");
    EXPECT_EQ(attributes(path("\xFF\xFE clip")).size, 3U);
    EXPECT_TRUE(isExistingFile(path("\xFF\xFE clip")));
}

} // namespace tarnwell::test
