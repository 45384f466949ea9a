// SPDX-License-Identifier: MIT
#include "desktop/OutputPath.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

OutputPath examine(const std::string& path)
{
    return examineOutputPath(QString::fromStdString(path));
}

} // namespace

TEST(OutputPathTest, theExtensionIsAddedToANameWithoutIt)
{
    EXPECT_EQ(withOutputExtension(QStringLiteral("/a/b")), QStringLiteral("/a/b.mp4"));
    EXPECT_EQ(withOutputExtension(QStringLiteral("/a/b.mov")), QStringLiteral("/a/b.mov.mp4"));
    EXPECT_EQ(withOutputExtension(QStringLiteral("/a/b.MP4")), QStringLiteral("/a/b.MP4"));
}

TEST(OutputPathTest, theStateOfAPathIsThatOfTheFileSystem)
{
    const TemporaryDirectory folder;
    writeFile(folder.path() + "file.mp4", "contents");
    std::filesystem::create_directory(folder.path() + "folder.mp4");
    EXPECT_EQ(examine(folder.path() + "new.mp4"), OutputPath::Usable);
    EXPECT_EQ(examine(folder.path() + "file.mp4"), OutputPath::Exists);
    EXPECT_EQ(examine(folder.path() + "folder.mp4"), OutputPath::IsFolder);
    EXPECT_EQ(examine(folder.path() + "missing/new.mp4"), OutputPath::FolderMissing);
}

TEST(OutputPathTest, aFolderWithoutTheRightToWriteIsClosedEvenForAnExistingFile)
{
    const TemporaryDirectory folder;
    writeFile(folder.path() + "file.mp4", "contents");
    uid_t real = 0;
    uid_t effective = 0;
    uid_t saved = 0;
    ASSERT_EQ(::getresuid(&real, &effective, &saved), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
    if (real == 0) { // root can write everywhere
        ASSERT_EQ(::setresuid(65534, effective, saved), 0);
    }
    EXPECT_EQ(examine(folder.path() + "new.mp4"), OutputPath::FolderClosed);
    EXPECT_EQ(examine(folder.path() + "file.mp4"), OutputPath::FolderClosed);
    EXPECT_EQ(::setresuid(real, effective, saved), 0);
    EXPECT_EQ(::chmod(folder.path().c_str(), 0755), 0);
}

} // namespace tarnwell::test
