// SPDX-License-Identifier: MIT
#include "platform/HeldPlace.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarnwell::test
{

TEST(HeldPlaceTest, staysInAFolderThatIsRenamed)
{
    const TemporaryDirectory folder;
    std::filesystem::create_directory(folder.path() + "videos");
    const HeldPlace place(folder.path() + "videos/clip.mp4");
    std::filesystem::rename(folder.path() + "videos", folder.path() + "moved");
    std::filesystem::create_directory(folder.path() + "videos");
    writeFile(place.path(), "bytes");
    EXPECT_EQ(contentsOf(folder.path() + "moved/clip.mp4"), "bytes");
    EXPECT_FALSE(exists(folder.path() + "videos/clip.mp4"));
}

TEST(HeldPlaceTest, knowsWhetherItsFolderIsAtTheOriginalPath)
{
    const TemporaryDirectory folder;
    std::filesystem::create_directory(folder.path() + "videos");
    const HeldPlace place(folder.path() + "videos/clip.mp4");
    EXPECT_TRUE(place.isAtOriginalPath());
    std::filesystem::rename(folder.path() + "videos", folder.path() + "moved");
    EXPECT_FALSE(place.isAtOriginalPath());
    std::filesystem::create_directory(folder.path() + "videos");
    EXPECT_FALSE(place.isAtOriginalPath());
    std::filesystem::remove(folder.path() + "videos");
    std::filesystem::create_symlink("moved", folder.path() + "videos");
    EXPECT_TRUE(place.isAtOriginalPath());
}

TEST(HeldPlaceTest, isTheOriginalPathWhereNoFolderCanBeOpened)
{
    for (const std::string path : {"/nowhere/clip.mp4", "clip.mp4", ""}) {
        const HeldPlace place(path);
        EXPECT_EQ(place.path(), path);
        EXPECT_EQ(place.originalPath(), path);
        EXPECT_TRUE(place.isAtOriginalPath());
    }
}

} // namespace tarnwell::test
