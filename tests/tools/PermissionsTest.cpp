// SPDX-License-Identifier: MIT
// Permissions and group of an output.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/RefusedCall.h"
#include "tools/OutputFile.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

struct stat statusOf(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

mode_t permissionsOf(const std::string& path)
{
    return statusOf(path).st_mode & 07777U;
}

void setPermissions(const std::string& path, mode_t mode)
{
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
}

bool save(const std::string& path, mode_t mode)
{
    OutputFile file(path, {mode, std::nullopt, {}});
    return file.sync() && file.putOlderAside() && file.moveToPath()
        && (!file.hasOlder() || file.deleteOlder());
}

} // namespace

class PermissionsTest : public CreatorTest
{
protected:
    /// Saves on file systems with and without unnamed files.
    void expectSaved(const std::string& path, mode_t mode, mode_t expected)
    {
        const mode_t before = exists(path) ? permissionsOf(path) : 0;
        EXPECT_TRUE(save(path, mode));
        EXPECT_EQ(permissionsOf(path), expected) << std::oct << mode;
        if (before == 0)
            std::filesystem::remove(path);
        else
            setPermissions(path, before);
        EXPECT_TRUE(holdsWithout(RefusedCall::OpenNameless, [&] { return save(path, mode); }));
        EXPECT_EQ(permissionsOf(path), expected) << std::oct << mode;
        std::filesystem::remove(path);
    }
};

TEST_F(PermissionsTest, aNewFileHasThoseOfTheModeWithoutTheUmask)
{
    struct Row {
        mode_t mode;
        mode_t mask;
        mode_t expected;
    };
    for (const Row& row : std::vector<Row>{{0666, 0022, 0644}, {0600, 0022, 0600}, {0640, 0022, 0640},
             {0444, 0002, 0644}, {0664, 0002, 0664}, {0666, 0777, 0600}, {0, 0, 0600}}) {
        const mode_t usual = ::umask(row.mask);
        expectSaved(output(), row.mode, row.expected);
        ::umask(usual);
    }
}

TEST_F(PermissionsTest, aNewFileOfAnotherGroupGivesItNoMoreThanEveryone)
{
    const mode_t usual = ::umask(0);
    struct Row {
        mode_t mode;
        mode_t expected;
    };
    for (const Row& row : std::vector<Row>{{0640, 0600}, {0660, 0600}, {0664, 0644}, {0666, 0666}}) {
        OutputFile file(output(), {row.mode, ::getegid() + 1, {}});
        EXPECT_TRUE(file.sync() && file.putOlderAside() && file.moveToPath());
        EXPECT_EQ(permissionsOf(output()), row.expected) << std::oct << row.mode;
        std::filesystem::remove(output());
    }
    OutputFile file(output(), {0640, ::getegid(), {}});
    EXPECT_TRUE(file.sync() && file.putOlderAside() && file.moveToPath());
    EXPECT_EQ(permissionsOf(output()), 0640U);
    ::umask(usual);
}

TEST_F(PermissionsTest, theGroupOfAFolderCannotReadAPrivateInput)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give the folder a group that is not his";
    setGoodFfmpeg();
    setPermissions(input(), 0640);
    ASSERT_EQ(::chown(tools.videos().c_str(), static_cast<uid_t>(-1), 65533), 0);
    setPermissions(tools.videos(), 02770); // files in it get its group
    EXPECT_EQ(run(transcode()), 0);
    EXPECT_EQ(statusOf(output()).st_gid, 65533U);
    EXPECT_EQ(permissionsOf(output()), 0600U);
}

TEST_F(PermissionsTest, aReplacedFileKeepsIts)
{
    for (const mode_t mode : {0600U, 0640U, 0444U, 0777U}) {
        writeFile(output(), "older");
        setPermissions(output(), mode);
        expectSaved(output(), 0666, mode);
    }
}

TEST_F(PermissionsTest, specialBitsAreNotKept)
{
    writeFile(output(), "older");
    setPermissions(output(), 06755);
    expectSaved(output(), 0666, 0755);
}

TEST_F(PermissionsTest, aLinkGivesNoPermissions)
{
    writeFile(tools.at("private.mp4"), "older");
    setPermissions(tools.at("private.mp4"), 0777);
    std::filesystem::create_symlink(tools.at("private.mp4"), output());
    EXPECT_TRUE(save(output(), 0600));
    EXPECT_EQ(permissionsOf(output()), 0600U);
}

TEST_F(PermissionsTest, theGroupOfAReplacedFileIsKept)
{
    const gid_t group = ::getegid() == 0 ? 65534 : ::getegid();
    writeFile(output(), "older");
    ASSERT_EQ(::chown(output().c_str(), static_cast<uid_t>(-1), group), 0);
    setPermissions(output(), 0660);
    EXPECT_TRUE(save(output(), 0666));
    EXPECT_EQ(statusOf(output()).st_gid, group);
    EXPECT_EQ(permissionsOf(output()), 0660U);
}

TEST_F(PermissionsTest, anotherGroupGetsNoMoreThanEveryone)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can create a file of a group that is not his";
    setPermissions(tools.videos(), 0777);
    writeFile(output(), "older");
    ASSERT_EQ(::chown(output().c_str(), 65534, 65533), 0);
    setPermissions(output(), 0664);
    EXPECT_TRUE(holdsInChild([&] {
        return ::setgid(65534) == 0 && ::setuid(65534) == 0 && save(output(), 0666)
            && statusOf(output()).st_gid != 65533;
    }));
    EXPECT_EQ(permissionsOf(output()), 0644U);
}

TEST_F(PermissionsTest, aResultIsAsPrivateAsTheInput)
{
    setGoodFfmpeg();
    const mode_t usual = ::umask(0022);
    setPermissions(input(), 0600);
    for (const auto& arguments : {transcode(), fixFlag(), still()}) {
        EXPECT_EQ(run(arguments), 0);
        EXPECT_EQ(permissionsOf(output()), 0600U);
        std::filesystem::remove(output());
    }
    setPermissions(input(), 0644);
    EXPECT_EQ(run(transcode()), 0);
    EXPECT_EQ(permissionsOf(output()), 0644U);
    ::umask(usual);
}

TEST_F(PermissionsTest, nothingIsReadableForOthersBeforeItIsFinished)
{
    EXPECT_TRUE(holdsWithout(RefusedCall::OpenNameless, [this] {
        const OutputFile file(output());
        struct stat status = {};
        return ::fstat(file.descriptor(), &status) == 0 && (status.st_mode & 07777U) == 0600U;
    }));
    const OutputFile file(output());
    struct stat status = {};
    ASSERT_EQ(::fstat(file.descriptor(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

} // namespace tarnwell::test
