// SPDX-License-Identifier: MIT
// The new names of older files, and the comparison of directory entries.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/RefusedCall.h"
#include "tools/OutputPlace.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;

/// Returns the new path; empty if no file was renamed.
std::string putAside(const std::string& path, const std::string& word)
{
    const OutputPlace place(path);
    const std::string name = place.putAside(word);
    return name.empty() ? name : place.pathOf(name);
}

bool isEntryOf(const std::string& path, const std::string& file)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    const bool isEntry = OutputPlace(path).holds(descriptor);
    ::close(descriptor);
    return isEntry;
}

} // namespace

class PutAsideTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return m_folder.path() + name; }
    const std::string& folder() const { return m_folder.path(); }

private:
    TemporaryDirectory m_folder;
};

class EntryTest : public PutAsideTest
{
};

TEST_F(PutAsideTest, theWordStandsBeforeTheExtension)
{
    struct Row {
        const char* name;
        const char* aside;
    };
    const std::vector<Row> rows = {
        {"Rotated.mp4", "Rotated (previous).mp4"},
        {"two.dots.mp4", "two.dots (previous).mp4"},
        {"none", "none (previous)"},
        {".hidden", ".hidden (previous)"},
        {".hidden.mp4", ".hidden (previous).mp4"},
        {"dot at the end.", "dot at the end (previous)."},
        {"a (previous).mp4", "a (previous) (previous).mp4"},
        {"new\nline \xFF.mp4", "new\nline \xFF (previous).mp4"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        writeFile(at(row.name), row.name);
        EXPECT_EQ(putAside(at(row.name), "previous"), at(row.aside));
        EXPECT_FALSE(exists(at(row.name)));
        EXPECT_EQ(contentsOf(at(row.aside)), row.name);
    }
}

TEST_F(PutAsideTest, aDotInTheFoldersNameIsNoExtension)
{
    std::filesystem::create_directory(at("a.b"));
    writeFile(at("a.b/clip"), "clip");
    EXPECT_EQ(putAside(at("a.b/clip"), "original"), at("a.b/clip (original)"));
}

TEST_F(PutAsideTest, namesInUseAreNumbered)
{
    for (int run = 1; run <= 4; ++run) {
        writeFile(at("out.mp4"), std::to_string(run));
        EXPECT_NE(putAside(at("out.mp4"), "previous"), "");
    }
    EXPECT_EQ(namesIn(folder()),
        Names(
            {"out (previous 2).mp4", "out (previous 3).mp4", "out (previous 4).mp4", "out (previous).mp4"}));
    EXPECT_EQ(contentsOf(at("out (previous).mp4")), "1");
    EXPECT_EQ(contentsOf(at("out (previous 4).mp4")), "4");
}

TEST_F(PutAsideTest, foldersAndBrokenLinksUseNamesToo)
{
    std::filesystem::create_directory(at("out (previous).mp4"));
    std::filesystem::create_symlink(at("nowhere"), at("out (previous 2).mp4"));
    writeFile(at("out.mp4"), "older");
    EXPECT_EQ(putAside(at("out.mp4"), "previous"), at("out (previous 3).mp4"));
    EXPECT_TRUE(std::filesystem::is_symlink(at("out (previous 2).mp4")));
    EXPECT_EQ(contentsOf(at("out (previous 3).mp4")), "older");
}

TEST_F(PutAsideTest, aGapIsFilled)
{
    writeFile(at("out (previous).mp4"), "first");
    writeFile(at("out (previous 3).mp4"), "third");
    writeFile(at("out.mp4"), "older");
    EXPECT_EQ(putAside(at("out.mp4"), "previous"), at("out (previous 2).mp4"));
}

TEST_F(PutAsideTest, aLinkIsRenamedInsteadOfItsTarget)
{
    writeFile(at("original.mp4"), "original");
    std::filesystem::create_symlink("original.mp4", at("out.mp4"));
    EXPECT_EQ(putAside(at("out.mp4"), "previous"), at("out (previous).mp4"));
    EXPECT_TRUE(std::filesystem::is_symlink(at("out (previous).mp4")));
    EXPECT_EQ(contentsOf(at("original.mp4")), "original");
}

TEST_F(PutAsideTest, aMissingFileIsNotRenamed)
{
    EXPECT_EQ(putAside(at("out.mp4"), "previous"), "");
    EXPECT_EQ(putAside(at("nowhere/out.mp4"), "previous"), "");
    EXPECT_EQ(namesIn(folder()), Names());
}

TEST_F(PutAsideTest, aNameThatWouldBeTooLongIsShortened)
{
    const std::string letter = "\xC3\xA4";
    std::string name;
    while (name.size() < 250)
        name += letter;
    name += ".mp4";
    for (const char* end : {" (previous).mp4", " (previous 2).mp4", " (previous 3).mp4"}) {
        writeFile(at(name), end);
        const std::string aside = putAside(at(name), "previous");
        ASSERT_TRUE(aside.ends_with(end)) << aside;
        const std::string stem
            = aside.substr(folder().size(), aside.size() - folder().size() - std::string(end).size());
        EXPECT_EQ(stem.size() % letter.size(), 0U);
        EXPECT_GT(stem.size(), 220U);
        EXPECT_EQ(contentsOf(aside), end);
        EXPECT_FALSE(exists(at(name)));
    }
}

TEST_F(PutAsideTest, aFolderIsNotRenamed)
{
    std::filesystem::create_directory(at("out.mp4"));
    EXPECT_EQ(putAside(at("out.mp4"), "previous"), "");
    EXPECT_EQ(namesIn(folder()), Names({"out.mp4"}));
}

TEST_F(PutAsideTest, aSystemWithoutARenameToAFreeNameIsSupported)
{
    writeFile(at("out (previous).mp4"), "first");
    writeFile(at("out.mp4"), "older");
    EXPECT_TRUE(holdsWithout(RefusedCall::RenameToFreeName,
        [this] { return putAside(at("out.mp4"), "previous") == at("out (previous 2).mp4"); }));
    EXPECT_EQ(contentsOf(at("out (previous).mp4")), "first");
    EXPECT_EQ(contentsOf(at("out (previous 2).mp4")), "older");
    EXPECT_FALSE(exists(at("out.mp4")));
}

TEST_F(EntryTest, anySpellingOfAPathMeansTheSameFile)
{
    writeFile(at("a.mp4"), "a");
    std::filesystem::create_directory(at("sub"));
    std::filesystem::create_directory_symlink(folder(), at("linked"));
    for (const char* spelling :
        {"a.mp4", "./a.mp4", "sub/../a.mp4", "/a.mp4", "linked/a.mp4", "linked/linked/a.mp4"}) {
        EXPECT_TRUE(isEntryOf(at("a.mp4"), at(spelling))) << spelling;
        EXPECT_TRUE(isEntryOf(at(spelling), at("a.mp4"))) << spelling;
    }
}

TEST_F(EntryTest, aLinkMeansItsTarget)
{
    writeFile(at("a.mp4"), "a");
    std::filesystem::create_directory(at("sub"));
    std::filesystem::create_symlink("a.mp4", at("c.mp4"));
    std::filesystem::create_symlink("../c.mp4", at("sub/c.mp4"));
    for (const char* link : {"c.mp4", "sub/c.mp4"}) {
        EXPECT_TRUE(isEntryOf(at("a.mp4"), at(link))) << link;
        EXPECT_FALSE(isEntryOf(at(link), at("a.mp4"))) << link; // the entry is a link, not the file
    }
}

TEST_F(EntryTest, aHardLinkMeansTheSameFile)
{
    writeFile(at("a.mp4"), "a");
    std::filesystem::create_hard_link(at("a.mp4"), at("b.mp4"));
    EXPECT_TRUE(isEntryOf(at("b.mp4"), at("a.mp4")));
}

TEST_F(EntryTest, otherFilesAreDifferent)
{
    writeFile(at("a.mp4"), "a");
    writeFile(at("b.mp4"), "a");
    std::filesystem::create_directory(at("sub"));
    writeFile(at("sub/a.mp4"), "a");
    for (const char* other : {"b.mp4", "sub/a.mp4", "A.mp4", "not there.mp4", "nowhere/a.mp4", ""})
        EXPECT_FALSE(isEntryOf(at("a.mp4"), at(other))) << other;
}

TEST_F(EntryTest, aMissingFileIsDifferent)
{
    EXPECT_FALSE(isEntryOf(at("none.mp4"), at("none.mp4")));
}

} // namespace tarnwell::test
