// SPDX-License-Identifier: MIT
// The file of a still frame and its folder.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <filesystem>
#include <sstream>
#include <sys/stat.h>

namespace tarnwell::test
{

namespace
{

std::vector<std::string> linesOf(const std::string& path)
{
    std::vector<std::string> lines;
    std::istringstream text(contentsOf(path));
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

class StillFileTest : public FakeToolsTest
{
protected:
    StillFileTest() { tools().setCreator(recordingScript() + stillScript()); }

    std::string recordingScript() const
    {
        return "record-output " + folder() + "paths\nrecord-folder " + folder() + "listings\n";
    }

    /// The path that each extraction got as its last argument.
    std::vector<std::string> stillPaths() const { return linesOf(folder() + "paths"); }

    /// The names that each extraction found in the folder of its output, each followed by a blank.
    std::vector<std::string> listings() const { return linesOf(folder() + "listings"); }

    /// Replaces the application with a new one, which has no folder yet.
    void quit() { start(); }

    std::string stillFolder() const
    {
        return std::filesystem::path(stillPaths().at(0)).parent_path().string();
    }
};

TEST_F(StillFileTest, theFolderIsPrivateFromTheFirstExtractionToTheEnd)
{
    const auto before = namesIn(ownTemporaryFolder());
    start();
    EXPECT_EQ(namesIn(ownTemporaryFolder()), before);
    openVideo();
    EXPECT_EQ(namesIn(ownTemporaryFolder()).size(), before.size() + 1);
    struct stat status = {};
    ASSERT_EQ(::stat(stillFolder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    EXPECT_EQ(std::filesystem::path(stillFolder()).parent_path(), ownTemporaryFolder());
    quit();
    EXPECT_FALSE(exists(stillFolder()));
}

TEST_F(StillFileTest, everyExtractionUsesTheSamePathInAnEmptyFolderEvenAfterItsRemoval)
{
    start();
    openVideo();
    openVideo();
    EXPECT_TRUE(namesIn(stillFolder()).empty());
    std::filesystem::remove_all(stillFolder());
    openVideo();
    EXPECT_EQ(stillPaths(), std::vector<std::string>(6, stillFolder() + "/posterFrame.jpg"));
    EXPECT_EQ(listings(), std::vector<std::string>(6, ""));
    quit();
    EXPECT_FALSE(exists(stillFolder()));
}

TEST_F(StillFileTest, aLinkInPlaceOfTheFolderIsNotFollowed)
{
    start();
    openVideo();
    std::filesystem::create_directory(folder() + "other");
    std::filesystem::remove_all(stillFolder());
    std::filesystem::create_symlink(folder() + "other", stillFolder());
    openVideo();
    EXPECT_NE(stillPaths().at(2), stillPaths().at(0));
    EXPECT_EQ(stillPaths().at(3), stillPaths().at(2));
    EXPECT_TRUE(namesIn(folder() + "other").empty());
    std::filesystem::remove(stillFolder());
}

} // namespace tarnwell::test
