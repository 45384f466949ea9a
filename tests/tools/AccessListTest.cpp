// SPDX-License-Identifier: MIT
// Access control lists (ACL) of inputs, older files and folders. The file system of the tests must support
// them.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"

#include <cstdint>
#include <filesystem>
#include <linux/posix_acl_xattr.h>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr std::uint32_t someUser = 65534;
constexpr const char* ofFile = "system.posix_acl_access";
constexpr const char* ofNewFiles = "system.posix_acl_default";

std::string littleEndian(std::uint32_t number, int bytes)
{
    std::string text;
    for (int byte = 0; byte < bytes; ++byte)
        text += static_cast<char>(number >> (8 * byte));
    return text;
}

std::string entry(std::uint32_t tag, std::uint32_t rights, std::uint32_t user = ~0U)
{
    return littleEndian(tag, 2) + littleEndian(rights, 2) + littleEndian(user, 4);
}

/// The owner can read and write, one other user can do `rights` if `mask` contains them, the owning group and
/// everyone else nothing.
std::string listWith(std::uint32_t rights, std::uint32_t mask)
{
    return littleEndian(POSIX_ACL_XATTR_VERSION, 4) + entry(1, 6) + entry(2, rights, someUser) + entry(4, 0)
        + entry(16, mask) + entry(32, 0);
}

std::string listOf(const std::string& path)
{
    std::string list(1000, '\0');
    const ssize_t size = ::getxattr(path.c_str(), ofFile, list.data(), list.size());
    list.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return list;
}

mode_t permissionsOf(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

} // namespace

class AccessListTest : public CreatorTest
{
protected:
    void SetUp() override
    {
        CreatorTest::SetUp();
        setGoodFfmpeg();
        m_usual = ::umask(0022);
    }

    void TearDown() override
    {
        ::umask(m_usual);
        CreatorTest::TearDown();
    }

    static void setList(const std::string& path, const char* attribute, const std::string& list)
    {
        ASSERT_EQ(::setxattr(path.c_str(), attribute, list.data(), list.size(), 0), 0)
            << "the file system has no access lists: set TMPDIR to another one";
    }

    /// Saves, on file systems with and without unnamed files. `failing`: a function whose calls fail.
    void expectSaved(mode_t mode, const std::string& list, const std::string& failing = "none")
    {
        const std::string olderBytes = contentsOf(output());
        const std::string olderList = listOf(output());
        for (const auto& refused : {std::vector<RefusedCall>(), {RefusedCall::OpenNameless}}) {
            std::filesystem::remove(output());
            if (!olderBytes.empty()) {
                writeFile(output(), olderBytes);
                setList(output(), ofFile, olderList);
            }
            EXPECT_EQ(run(transcode(),
                          {.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
                               "TARNWELL_FAILS=" + failing + " -1"},
                              .refused = refused}),
                0);
            EXPECT_EQ(permissionsOf(output()), mode);
            EXPECT_EQ(listOf(output()), list);
        }
    }

private:
    mode_t m_usual = 0;
};

TEST_F(AccessListTest, aNewFileGetsTheListOfTheInput)
{
    setList(input(), ofFile, listWith(4, 4));
    expectSaved(0640, listWith(4, 4));
}

TEST_F(AccessListTest, theUmaskLimitsAList)
{
    setList(input(), ofFile, listWith(6, 6));
    expectSaved(0640, listWith(6, 4));
    std::filesystem::remove(output());
    ::umask(0077);
    expectSaved(0600, listWith(6, 0));
}

TEST_F(AccessListTest, onlyTheOwnerCanAccessAFileWhoseListCannotBeSet)
{
    setList(input(), ofFile, listWith(4, 4));
    expectSaved(0600, "", "fsetxattr");
}

TEST_F(AccessListTest, theListOfAFolderForNewFilesDoesNotApply)
{
    setList(tools.videos(), ofNewFiles, listWith(6, 6));
    ASSERT_EQ(::chmod(input().c_str(), 0640), 0);
    expectSaved(0640, "");
    ASSERT_NE(listOf(input()).size(), listWith(6, 6).size()) << "the input has been there before";
}

TEST_F(AccessListTest, aListOfAFolderThatCannotBeRemovedAllowsNothing)
{
    setList(tools.videos(), ofNewFiles, listWith(6, 6));
    ASSERT_EQ(::chmod(input().c_str(), 0640), 0);
    expectSaved(0600, listWith(6, 0), "fremovexattr");
}

TEST_F(AccessListTest, aFileSystemWithoutListsDoesNotLimitPermissions)
{
    ASSERT_EQ(::chmod(input().c_str(), 0640), 0);
    expectSaved(0640, "", "fremovexattr");
}

TEST_F(AccessListTest, aReplacedFileKeepsItsList)
{
    writeFile(output(), "older");
    setList(output(), ofFile, listWith(6, 6));
    expectSaved(0660, listWith(6, 6));
}

TEST_F(AccessListTest, onlyTheOwnerCanAccessAFileOfAnotherGroupThanThatOfTheList)
{
    ASSERT_EQ(::geteuid(), 0U) << "only the superuser can create a file of a group that is not his";
    ASSERT_EQ(::chown(input().c_str(), static_cast<uid_t>(-1), 65533), 0);
    setList(input(), ofFile, listWith(4, 4));
    expectSaved(0600, "");
}

} // namespace tarnwell::test
