// SPDX-License-Identifier: MIT
// The temporary folder has no room for the still frame.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/tools/SmallDisk.h"

#include <cstdlib>
#include <filesystem>

namespace tarnwell::test
{

namespace
{

/// A small file system, mounted before the program has threads: a process with threads cannot enter a user
/// namespace, which an ordinary user needs to mount.
struct MountedFolder {
    TemporaryDirectory folder;
    SmallDisk disk{folder.path().substr(0, folder.path().size() - 1), 32 << 10};
};

const MountedFolder small;

} // namespace

class FullDiskTest : public FakeToolsTest
{
protected:
    FullDiskTest()
    {
        ::setenv("TMPDIR", small.folder.path().c_str(), 1); // WindowTest restores it
        tools().setCreator("record-output " + folder() + "paths\n" + stillScript());
    }

    void SetUp() override { ASSERT_TRUE(small.disk.isThere()) << "this user may not mount anything"; }

    std::string diskFolder() const { return small.folder.path(); }

    std::string lastStillPath() const
    {
        const std::string paths = contentsOf(folder() + "paths");
        const auto end = paths.rfind('\n');
        return paths.substr(paths.rfind('\n', end - 1) + 1, end - paths.rfind('\n', end - 1) - 1);
    }

    void TearDown() override { std::filesystem::remove(diskFolder() + "rest"); }

    void fillDisk() const { writeFile(diskFolder() + "rest", std::string(40 << 20, 'x')); }
};

TEST_F(FullDiskTest, aStillIsWrittenElsewhere)
{
    start();
    openVideo();
    EXPECT_TRUE(lastStillPath().starts_with(diskFolder())) << lastStillPath();
    fillDisk();
    openVideo();
    EXPECT_FALSE(lastStillPath().starts_with(diskFolder())) << lastStillPath();
    EXPECT_EQ(shownPicture().size(), stillSize);
}

TEST_F(FullDiskTest, aStillIsWrittenElsewhereWhenTheDiskBecomesFullMeanwhile)
{
    start();
    tools().setCreator("record-output " + folder() + "paths\ntouch " + folder() + "started\nwait-for "
        + folder() + "go\n" + stillScript());
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [this] {
        if (exists(folder() + "go") || !exists(folder() + "started"))
            return;
        fillDisk();
        writeFile(folder() + "go", "");
    });
    watch.start(1);
    openVideo();
    EXPECT_TRUE(contentsOf(folder() + "paths").starts_with(diskFolder()));
    EXPECT_FALSE(lastStillPath().starts_with(diskFolder())) << lastStillPath();
    EXPECT_EQ(shownPicture().size(), stillSize);
}

} // namespace tarnwell::test
