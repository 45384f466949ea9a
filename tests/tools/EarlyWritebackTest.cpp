// SPDX-License-Identifier: MIT
#include "tools/EarlyWriteback.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace tarnwell::test
{

TEST(EarlyWritebackTest, changesNothingInAFileThatGrows)
{
    const TemporaryDirectory folder;
    const std::string path = folder.path() + "growing";
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    EarlyWriteback writeback(file);
    std::string expected;
    for (const char letter : {'a', 'b', 'c', 'd', 'e'}) {
        const std::string part(5000001, letter);
        ASSERT_EQ(::write(file, part.data(), part.size()), static_cast<ssize_t>(part.size()));
        expected += part;
        writeback.advanceToEnd();
        writeback.advanceTo(static_cast<off_t>(expected.size()));
        writeback.waitForDisk();
    }
    EXPECT_EQ(::lseek(file, 0, SEEK_CUR), static_cast<off_t>(expected.size()));
    ::close(file);
    EXPECT_TRUE(contentsOf(path) == expected);
}

TEST(EarlyWritebackTest, aFileThatCannotBeReadIsIgnored)
{
    EarlyWriteback writeback(-1);
    writeback.advanceToEnd();
    EXPECT_EQ(errno, EBADF);
}

} // namespace tarnwell::test
