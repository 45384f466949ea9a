// SPDX-License-Identifier: MIT
// Recognises a file on another mount, where device and inode number differ.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/MemoryFile.h"
#include "tools/OutputPlace.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

constexpr std::size_t size = 300000;

std::string bytes()
{
    return std::string(size, 'a');
}

} // namespace

class SameFileTest : public testing::Test
{
protected:
    SameFileTest() { writeFile(path(), bytes()); }

    std::string path() const { return m_folder.path() + "out.mp4"; }

    /// Compares with a file on another device (in memory) with these bytes and the modification time of the
    /// file at the path plus `nanoseconds`.
    bool isSameAs(const std::string& content, long nanoseconds = 0) const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(path().c_str(), &status), 0);
        const MemoryFile other(content);
        status.st_mtim.tv_nsec += status.st_mtim.tv_nsec > 500000000 ? -nanoseconds : nanoseconds;
        const timespec times[] = {status.st_atim, status.st_mtim};
        EXPECT_EQ(::futimens(other.descriptor(), times), 0);
        return OutputPlace(path()).holds(other.descriptor());
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(SameFileTest, equalSizeTimeAndEndsOnAnotherDeviceMeanTheSameFile)
{
    EXPECT_TRUE(isSameAs(bytes()));
}

TEST_F(SameFileTest, anotherTimeMeansAnotherFile)
{
    EXPECT_FALSE(isSameAs(bytes(), 1));
}

TEST_F(SameFileTest, anotherSizeMeansAnotherFile)
{
    EXPECT_FALSE(isSameAs(bytes() + std::string(1, '\0')));
}

TEST_F(SameFileTest, otherFirstOrLastBytesMeanAnotherFile)
{
    for (const std::size_t offset : {std::size_t(0), size - 1}) {
        std::string other = bytes();
        other[offset] = 'b';
        EXPECT_FALSE(isSameAs(other)) << offset;
    }
}

TEST_F(SameFileTest, aCopyOnTheSameDeviceIsAnotherFile)
{
    const std::string copy = path() + " copy";
    std::filesystem::copy(path(), copy);
    std::filesystem::last_write_time(copy, std::filesystem::last_write_time(path()));
    const int file = ::open(copy.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_FALSE(OutputPlace(path()).holds(file));
    ::close(file);
}

TEST(FixedNumbersTest, existOnDisksButNotOnFuseAndOnServersOfWindows)
{
    for (const std::uint32_t disk : {0xEF53U, 0x58465342U, 0x9123683EU, 0x01021994U, 0x6969U}) // NFS is last
        EXPECT_TRUE(givesFixedNumbers(disk)) << std::hex << disk;
    for (const std::uint32_t other : {0x65735546U, 0x01021997U, 0x786F4256U, 0xFF534D42U, 0xFE534D42U})
        EXPECT_FALSE(givesFixedNumbers(other)) << std::hex << other;
}

TEST_F(SameFileTest, aLinkIsNotTheFileThatItLeadsTo)
{
    const std::string link = path() + " link";
    std::filesystem::create_symlink(path(), link);
    const int file = ::open(path().c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_FALSE(OutputPlace(link).holds(file));
    EXPECT_TRUE(OutputPlace(path()).holds(file));
    ::close(file);
}

} // namespace tarnwell::test
