// SPDX-License-Identifier: MIT
#include "platform/FileFingerprint.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace tarnwell::test
{

class FileFingerprintTest : public testing::Test
{
protected:
    FileFingerprintTest() { writeFile(path("file"), "bytes"); }

    std::string path(const std::string& name) const { return m_folder.path() + name; }

    /// The file system's clock has a resolution of some milliseconds. Returns once a change of a file gets
    /// another time than those before.
    void waitForAnotherTime() const
    {
        const auto now = [this] {
            writeFile(path("clock"), "");
            return std::filesystem::last_write_time(path("clock"));
        };
        const auto start = now();
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (now() == start)
            ASSERT_LT(std::chrono::steady_clock::now(), limit) << "the file system's clock stands still";
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(FileFingerprintTest, anUntouchedFileKeepsItsFingerprint)
{
    const FileFingerprint before(path("file"));
    waitForAnotherTime();
    EXPECT_EQ(contentsOf(path("file")), "bytes"); // reading is no change
    EXPECT_EQ(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, nothingEqualsNothingAndNoFile)
{
    const FileFingerprint before(path("missing"));
    EXPECT_EQ(FileFingerprint(path("missing")), before);
    EXPECT_NE(FileFingerprint(path("file")), before);
    writeFile(path("missing"), "");
    EXPECT_NE(FileFingerprint(path("missing")), before);
}

TEST_F(FileFingerprintTest, anotherSizeChangesIt)
{
    const FileFingerprint before(path("file"));
    writeFile(path("file"), "more bytes");
    EXPECT_NE(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, theSameBytesWrittenAgainChangeIt)
{
    const FileFingerprint before(path("file"));
    waitForAnotherTime();
    writeFile(path("file"), "bytes");
    EXPECT_NE(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, anotherFileInItsPlaceChangesIt)
{
    const FileFingerprint before(path("file"));
    waitForAnotherTime();
    writeFile(path("other"), "bytes");
    std::filesystem::rename(path("other"), path("file"));
    EXPECT_NE(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, aRenameAndBackDoesNotChangeIt)
{
    const FileFingerprint before(path("file"));
    waitForAnotherTime();
    std::filesystem::rename(path("file"), path("other"));
    std::filesystem::rename(path("other"), path("file"));
    EXPECT_EQ(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, aNewLinkOrOtherPermissionsDoNotChangeIt)
{
    const FileFingerprint before(path("file"));
    waitForAnotherTime();
    std::filesystem::create_hard_link(path("file"), path("link"));
    std::filesystem::permissions(path("file"), std::filesystem::perms::owner_read);
    EXPECT_EQ(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, itsOwnBytesInAnotherFileWithItsTimeDoNotChangeIt)
{
    const FileFingerprint before(path("file"));
    const auto time = std::filesystem::last_write_time(path("file"));
    waitForAnotherTime();
    std::filesystem::copy(path("file"), path("copy"));
    std::filesystem::last_write_time(path("copy"), time);
    std::filesystem::rename(path("copy"), path("file"));
    EXPECT_EQ(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, aRemovedFileChangesIt)
{
    const FileFingerprint before(path("file"));
    std::filesystem::remove(path("file"));
    EXPECT_NE(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, aWriteThroughALinkChangesIt)
{
    std::filesystem::create_symlink(path("file"), path("link"));
    const FileFingerprint before(path("link"));
    writeFile(path("link"), "more bytes");
    EXPECT_NE(FileFingerprint(path("link")), before);
}

TEST_F(FileFingerprintTest, aLinkThatIsReplacedChangesIt)
{
    std::filesystem::create_symlink(path("file"), path("link"));
    const FileFingerprint before(path("link"));
    waitForAnotherTime();
    std::filesystem::create_symlink(path("file"), path("other link"));
    std::filesystem::rename(path("other link"), path("link"));
    EXPECT_NE(FileFingerprint(path("link")), before);
}

TEST_F(FileFingerprintTest, aDanglingLinkIsSomething)
{
    std::filesystem::create_symlink(path("missing"), path("link"));
    EXPECT_NE(FileFingerprint(path("link")), FileFingerprint(path("missing")));
}

} // namespace tarnwell::test
