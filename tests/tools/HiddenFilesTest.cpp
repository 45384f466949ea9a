// SPDX-License-Identifier: MIT
#include "tools/HiddenFiles.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/RefusedCall.h"
#include "tools/OutputPlace.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;
using Hours = std::chrono::hours;

} // namespace

class HiddenFilesTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return m_folder.path() + name; }

    /// Creates a hidden file like that of a killed process and returns its name.
    std::string leaveFile(Hours age)
    {
        std::string name;
        const int file = createHiddenFile(m_place.folder(), name);
        EXPECT_GE(file, 0);
        ::close(file);
        setAge(name, age);
        return name;
    }

    void setAge(const std::string& name, Hours age) const
    {
        std::filesystem::last_write_time(
            at(name), std::filesystem::file_time_type::clock::now() - age + std::chrono::minutes(1));
    }

    void removeStale() const { removeStaleHiddenFiles(m_place.folder()); }
    Names names() const { return namesIn(m_folder.path()); }

private:
    TemporaryDirectory m_folder;
    OutputPlace m_place{m_folder.path() + "out.mp4"};
};

TEST_F(HiddenFilesTest, aNewFileIsForItsOwnerOnlyAndIsLocked)
{
    std::string name;
    const OutputPlace place(at("out.mp4"));
    const int file = createHiddenFile(place.folder(), name);
    struct stat status = {};
    ASSERT_EQ(::fstat(file, &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    const int other = ::open(at(name).c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_NE(::flock(other, LOCK_EX | LOCK_NB), 0);
    ::close(other);
    ::close(file);
}

TEST_F(HiddenFilesTest, aDayOldFileOfAKilledProcessIsRemoved)
{
    leaveFile(Hours(25));
    const std::string young = leaveFile(Hours(24));
    removeStale();
    EXPECT_EQ(names(), Names({young}));
}

TEST_F(HiddenFilesTest, itIsRemovedWhereFilesOpenForReadingCannotBeLockedExclusively)
{
    leaveFile(Hours(25));
    EXPECT_TRUE(holdsWithout(RefusedCall::ExclusiveLock, [this] {
        removeStale();
        return true;
    }));
    EXPECT_EQ(names(), Names());
}

TEST_F(HiddenFilesTest, aLockedFileStays)
{
    const std::string name = leaveFile(Hours(25));
    const int user = ::open(at(name).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(user, LOCK_EX), 0);
    removeStale();
    ::close(user);
    EXPECT_EQ(names(), Names({name}));
}

TEST_F(HiddenFilesTest, aFileWithAnotherLinkStays)
{
    const std::string name = leaveFile(Hours(25));
    std::filesystem::create_hard_link(at(name), at("kept"));
    removeStale();
    EXPECT_EQ(names(), Names({name, "kept"}));
}

TEST_F(HiddenFilesTest, aLinkAndAFolderStay)
{
    const std::string link = leaveFile(Hours(25));
    const std::string folder = leaveFile(Hours(25));
    std::filesystem::remove(at(link));
    std::filesystem::remove(at(folder));
    writeFile(at("kept"), "kept");
    setAge("kept", Hours(25));
    std::filesystem::create_symlink(at("kept"), at(link));
    std::filesystem::create_directory(at(folder));
    removeStale();
    EXPECT_EQ(names().size(), 3U);
    EXPECT_EQ(contentsOf(at("kept")), "kept");
}

TEST_F(HiddenFilesTest, aFileOfAnotherUserStays)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can create it";
    const std::string name = leaveFile(Hours(25));
    ASSERT_EQ(::chown(at(name).c_str(), 65534, 65534), 0);
    removeStale();
    EXPECT_EQ(names(), Names({name}));
}

TEST_F(HiddenFilesTest, filesOfSimilarNamesStay)
{
    const std::string name = leaveFile(Hours(25));
    std::string otherDigit = name;
    otherDigit.back() = otherDigit.back() == '0' ? '1' : '0';
    const Names similar = {".tarnwell-123-0", ".tarnwell-abcdef", ".tarnwell-unfinished-",
        ".tarnwell-unfinished-0123456789abcdef-0123456789abcdef", name + "0", name + ".mp4", otherDigit};
    for (const auto& other : similar) {
        EXPECT_FALSE(isHiddenName(other)) << other;
        writeFile(at(other), other);
        setAge(other, Hours(25));
    }
    removeStale();
    EXPECT_EQ(names().size(), similar.size());
    EXPECT_FALSE(exists(at(name)));
}

TEST_F(HiddenFilesTest, theFormOfTheNameStaysTheSame)
{
    // Files of earlier versions must be recognized.
    EXPECT_TRUE(isHiddenName(".tarnwell-unfinished-0123456789abcdef-e85f6991cf1b80eb"));
}

} // namespace tarnwell::test
