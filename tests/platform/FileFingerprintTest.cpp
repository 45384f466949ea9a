// SPDX-License-Identifier: MIT
#include "platform/FileFingerprint.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

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

TEST_F(FileFingerprintTest, aWriteWhoseModificationTimeIsSetBackChangesIt)
{
    const FileFingerprint before(path("file"));
    struct stat status = {};
    ASSERT_EQ(::stat(path("file").c_str(), &status), 0);
    waitForAnotherTime();
    writeFile(path("file"), "BYTES");
    const timespec times[] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, path("file").c_str(), times, 0), 0);
    EXPECT_NE(FileFingerprint(path("file")), before);
}

TEST_F(FileFingerprintTest, anotherFileInItsPlaceChangesIt)
{
    writeFile(path("other"), "bytes");
    const FileFingerprint before(path("file"));
    waitForAnotherTime(); // a rename sets the change time
    std::filesystem::rename(path("other"), path("file"));
    EXPECT_NE(FileFingerprint(path("file")), before);
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
    std::filesystem::create_symlink(path("file"), path("other link"));
    const FileFingerprint before(path("link"));
    waitForAnotherTime();
    std::filesystem::rename(path("other link"), path("link"));
    EXPECT_NE(FileFingerprint(path("link")), before);
}

TEST_F(FileFingerprintTest, aDanglingLinkIsSomething)
{
    std::filesystem::create_symlink(path("missing"), path("link"));
    EXPECT_NE(FileFingerprint(path("link")), FileFingerprint(path("missing")));
}

} // namespace tarnwell::test
