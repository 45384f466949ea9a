// SPDX-License-Identifier: MIT
#include "platform/TemporaryDirectory.h"

#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell::test
{

/// Sets or removes a variable of the environment for as long as it lives.
class EnvironmentVariable
{
public:
    EnvironmentVariable(const char* name, const char* value)
        : m_name(name)
    {
        if (const char* before = std::getenv(name))
            m_before = before;
        set(value);
    }
    ~EnvironmentVariable() { set(m_before ? m_before->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    void set(const char* value) const
    {
        if (value != nullptr)
            ::setenv(m_name, value, 1);
        else
            ::unsetenv(m_name);
    }

    const char* m_name;
    std::optional<std::string> m_before;
};

TEST(TemporaryDirectoryTest, onlyItsUserMayEnterIt)
{
    const mode_t before = ::umask(0);
    const TemporaryDirectory folder;
    ::umask(before);
    struct stat status = {};
    ASSERT_EQ(::stat(folder.path().c_str(), &status), 0);
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    EXPECT_EQ(status.st_uid, ::getuid());
}

TEST(TemporaryDirectoryTest, itsPathIsAbsoluteAndEndsInASlash)
{
    const TemporaryDirectory folder;
    EXPECT_TRUE(folder.path().starts_with('/'));
    EXPECT_TRUE(folder.path().ends_with('/'));
}

TEST(TemporaryDirectoryTest, itIsEmptyAtFirst)
{
    const TemporaryDirectory folder;
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST(TemporaryDirectoryTest, itGoesWithItsFiles)
{
    auto folder = std::make_unique<TemporaryDirectory>();
    const std::string path = folder->path();
    writeFile(path + "posterFrame.jpg", "a picture");
    std::filesystem::create_directories(path + "deep/er");
    writeFile(path + "deep/er/file", "");
    folder.reset();
    EXPECT_FALSE(exists(path));
}

TEST(TemporaryDirectoryTest, aLinkInItGoesAndItsTargetStays)
{
    const TemporaryDirectory other;
    writeFile(other.path() + "kept", "kept");
    {
        const TemporaryDirectory folder;
        std::filesystem::create_directory_symlink(other.path(), folder.path() + "link");
    }
    EXPECT_EQ(contentsOf(other.path() + "kept"), "kept");
}

TEST(TemporaryDirectoryTest, aLinkThatReplacedTheFolderIsNotFollowedAtTheEnd)
{
    const TemporaryDirectory other;
    writeFile(other.path() + "kept", "kept");
    std::string link;
    {
        const TemporaryDirectory folder;
        link = folder.path().substr(0, folder.path().size() - 1);
        std::filesystem::remove(link);
        std::filesystem::create_directory_symlink(other.path(), link);
    }
    EXPECT_EQ(contentsOf(other.path() + "kept"), "kept");
    std::filesystem::remove(link);
}

TEST(TemporaryDirectoryTest, everyOneIsFreshAndUnguessable)
{
    std::set<std::string> paths;
    for (int round = 0; round < 50; ++round)
        paths.insert(TemporaryDirectory().path());
    EXPECT_EQ(paths.size(), 50U);
}

TEST(TemporaryDirectoryTest, itStandsWhereTheEnvironmentSays)
{
    const TemporaryDirectory home;
    const EnvironmentVariable variable("TMPDIR", home.path().c_str());
    const TemporaryDirectory folder;
    EXPECT_EQ(std::filesystem::path(folder.path()).parent_path().parent_path(),
        std::filesystem::path(home.path()).parent_path());
}

struct UnusableCase {
    std::string name;
    const char* value;
};

class UnusableTemporaryFolderTest : public testing::TestWithParam<UnusableCase>
{
};

TEST_P(UnusableTemporaryFolderTest, isReplacedByTheSystemsOwn)
{
    const EnvironmentVariable variable("TMPDIR", GetParam().value);
    const TemporaryDirectory folder;
    EXPECT_TRUE(folder.path().starts_with("/tmp/") || folder.path().starts_with("/var/tmp/"))
        << folder.path();
    EXPECT_TRUE(exists(folder.path()));
}

INSTANTIATE_TEST_SUITE_P(Values, UnusableTemporaryFolderTest,
    testing::Values(UnusableCase{"unset", nullptr}, UnusableCase{"empty", ""}, UnusableCase{"relative", "."},
        UnusableCase{"missing", "/dev/null/missing"}, UnusableCase{"aFile", "/proc/self/exe"}),
    [](const auto& row) { return row.param.name; });

TEST(TemporaryDirectoryRestoreTest, anExistingFolderKeepsItsFiles)
{
    TemporaryDirectory folder;
    const std::string path = folder.path();
    writeFile(path + "file", "kept");
    folder.restore();
    EXPECT_EQ(folder.path(), path);
    EXPECT_EQ(contentsOf(path + "file"), "kept");
}

TEST(TemporaryDirectoryRestoreTest, aRemovedFolderComesBackAtItsPathAndIsPrivate)
{
    TemporaryDirectory folder;
    const std::string path = folder.path();
    std::filesystem::remove_all(path);
    const mode_t before = ::umask(0);
    folder.restore();
    ::umask(before);
    EXPECT_EQ(folder.path(), path);
    struct stat status = {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST(TemporaryDirectoryRestoreTest, aLinkInItsPlaceIsNotFollowed)
{
    const TemporaryDirectory other;
    TemporaryDirectory folder;
    const std::string path = folder.path();
    const std::string link = path.substr(0, path.size() - 1);
    std::filesystem::remove_all(path);
    std::filesystem::create_directory_symlink(other.path(), link);
    folder.restore();
    EXPECT_NE(folder.path(), path);
    EXPECT_TRUE(exists(folder.path()));
    std::filesystem::remove(link);
}

TEST(TemporaryDirectoryRestoreTest, aPathThatCannotBeCreatedAgainIsReplaced)
{
    std::optional<TemporaryDirectory> parent(std::in_place);
    std::optional<TemporaryDirectory> folder;
    {
        const EnvironmentVariable variable("TMPDIR", parent->path().c_str());
        folder.emplace();
    }
    const std::string path = folder->path();
    parent.reset();
    folder->restore();
    EXPECT_NE(folder->path(), path);
    EXPECT_TRUE(exists(folder->path()));
}

} // namespace tarnwell::test
