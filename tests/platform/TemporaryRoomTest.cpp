// SPDX-License-Identifier: MIT
// Where the temporary folder is created when file systems are full.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/RefusedCall.h"
#include "tests/tools/SmallDisk.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace tarnwell::test
{

class TemporaryRoomTest : public testing::Test
{
protected:
    TemporaryRoomTest()
    {
        if (const char* before = std::getenv("TMPDIR"))
            m_before = before;
    }
    ~TemporaryRoomTest() override
    {
        if (m_before)
            ::setenv("TMPDIR", m_before->c_str(), 1);
        else
            ::unsetenv("TMPDIR");
    }

    /// Mounts a file system of that size and makes it the temporary folder.
    void mountTemporaryFolder(int kibibytes)
    {
        m_disk.emplace(folderName(), kibibytes);
        ASSERT_TRUE(m_disk->isThere()) << "this user may not mount anything";
        ::setenv("TMPDIR", m_home.path().c_str(), 1);
    }

    /// Leaves no room at all.
    void fillDisk() const { writeFile(m_home.path() + "rest", std::string(40 << 20, 'x')); }

    bool isOnDisk(const TemporaryDirectory& folder) const { return folder.path().starts_with(m_home.path()); }

    std::string folderName() const { return m_home.path().substr(0, m_home.path().size() - 1); }

    /// The names of the folders there that this program makes.
    std::vector<std::string> namesOnDisk() const { return namesIn(m_home.path()); }

private:
    TemporaryDirectory m_home;
    std::optional<SmallDisk> m_disk;
    std::optional<std::string> m_before;
};

TEST_F(TemporaryRoomTest, aDiskWithRoomIsUsed)
{
    mountTemporaryFolder(32 << 10);
    const TemporaryDirectory folder;
    EXPECT_TRUE(isOnDisk(folder)) << folder.path();
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(TemporaryRoomTest, aFullDiskIsPassedOverAndNothingIsLeftOnIt)
{
    mountTemporaryFolder(32 << 10);
    fillDisk();
    const TemporaryDirectory folder;
    EXPECT_FALSE(isOnDisk(folder)) << folder.path();
    writeFile(folder.path() + "file", "text");
    EXPECT_EQ(contentsOf(folder.path() + "file"), "text");
    EXPECT_EQ(namesOnDisk(), std::vector<std::string>({"rest"}));
}

TEST_F(TemporaryRoomTest, aFullDiskIsPassedOverWhereFilesWithoutANameAreMissing)
{
    mountTemporaryFolder(32 << 10);
    fillDisk();
    EXPECT_TRUE(holdsWithout(RefusedCall::OpenNameless, [this] {
        const TemporaryDirectory folder;
        return !isOnDisk(folder) && namesIn(folder.path()).empty();
    }));
}

TEST_F(TemporaryRoomTest, aDiskWithLittleRoomIsPassedOver)
{
    mountTemporaryFolder(8 << 10);
    const TemporaryDirectory folder;
    EXPECT_FALSE(isOnDisk(folder)) << folder.path();
    EXPECT_TRUE(namesOnDisk().empty());
}

TEST_F(TemporaryRoomTest, aDiskThatHasBecomeFullIsLeft)
{
    mountTemporaryFolder(32 << 10);
    TemporaryDirectory folder;
    ASSERT_TRUE(isOnDisk(folder));
    const std::string first = folder.path();
    folder.restore();
    EXPECT_EQ(folder.path(), first);
    fillDisk();
    folder.restore();
    EXPECT_FALSE(isOnDisk(folder));
    EXPECT_TRUE(exists(folder.path()));
    EXPECT_EQ(namesOnDisk(), std::vector<std::string>({"rest"}));
    const std::string second = folder.path();
    folder.restore();
    EXPECT_EQ(folder.path(), second);
}

} // namespace tarnwell::test
