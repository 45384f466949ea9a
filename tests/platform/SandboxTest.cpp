// SPDX-License-Identifier: MIT
#include "platform/Sandbox.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace tarnwell::test
{

class SandboxTest : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return m_folder.path() + name; }

    /// In seconds and nanoseconds.
    std::pair<std::int64_t, std::int64_t> changeTime(const std::string& name) const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(path(name).c_str(), &status), 0);
        return {status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(SandboxTest, theTestsRunOutsideOfIt)
{
    EXPECT_FALSE(Sandbox::isInside());
}

TEST_F(SandboxTest, aFileUnderTwoNamesIsOneFile)
{
    writeFile(path("clip.mp4"), "bytes");
    std::filesystem::create_hard_link(path("clip.mp4"), path("grant.mp4"));
    EXPECT_TRUE(Sandbox::areGrantsOfOneFile(path("clip.mp4"), path("grant.mp4")));
    EXPECT_TRUE(Sandbox::areGrantsOfOneFile(path("clip.mp4"), path("clip.mp4")));
}

TEST_F(SandboxTest, aCopyWithTheTimeOfTheOriginalIsAnotherFile)
{
    writeFile(path("clip.mp4"), "bytes");
    std::filesystem::last_write_time(
        path("clip.mp4"), std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    std::filesystem::copy_file(path("clip.mp4"), path("copy.mp4"));
    do { // the change time has the resolution of the kernel's timer
        std::filesystem::last_write_time(
            path("copy.mp4"), std::filesystem::last_write_time(path("clip.mp4")));
    } while (changeTime("copy.mp4") == changeTime("clip.mp4"));
    EXPECT_FALSE(Sandbox::areGrantsOfOneFile(path("clip.mp4"), path("copy.mp4")));
}

TEST_F(SandboxTest, missingFilesAndFoldersAreNoGrantsOfOneFile)
{
    writeFile(path("clip.mp4"), "bytes");
    EXPECT_FALSE(Sandbox::areGrantsOfOneFile(path("clip.mp4"), path("missing.mp4")));
    EXPECT_FALSE(Sandbox::areGrantsOfOneFile(path("missing.mp4"), path("clip.mp4")));
    EXPECT_FALSE(Sandbox::areGrantsOfOneFile(path("missing.mp4"), path("missing.mp4")));
    EXPECT_FALSE(Sandbox::areGrantsOfOneFile(path(""), path("")));
}

} // namespace tarnwell::test
