// SPDX-License-Identifier: MIT
#include "tools/EarlyWriteback.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/MemoryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace
{

struct SyncCall {
    off_t offset;
    off_t size;
    unsigned int flags;
};

std::vector<SyncCall>& calls()
{
    static std::vector<SyncCall> list;
    return list;
}

/// The end of the range of the last call with that flag; 0 for none.
off_t endOfCalls(unsigned int flag)
{
    off_t end = 0;
    for (const SyncCall& call : calls()) {
        if (call.flags == flag)
            end = call.offset + call.size;
    }
    return end;
}

} // namespace

/// Replaces the function of the C library in this program. Records the call.
extern "C" int sync_file_range(int file, off64_t offset, off64_t size, unsigned int flags)
{
    calls().push_back({offset, size, flags});
    return static_cast<int>(::syscall(SYS_sync_file_range, file, offset, size, flags));
}

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

TEST(EarlyWritebackTest, waitsForAllButTheLastBytes)
{
    constexpr off_t piece = 9 << 20;
    const MemoryFile file; // the calls are recorded
    EarlyWriteback writeback(file.descriptor());
    calls().clear();
    for (off_t end = piece; end < 2 * EarlyWriteback::mostPending; end += piece) {
        writeback.advanceTo(end);
        writeback.waitForDisk();
        EXPECT_EQ(endOfCalls(SYNC_FILE_RANGE_WRITE), end);
        EXPECT_EQ(
            endOfCalls(SYNC_FILE_RANGE_WAIT_BEFORE), std::max<off_t>(0, end - EarlyWriteback::mostPending));
    }
}

TEST(EarlyWritebackTest, theEndWaitsForTheWholeFileInSmallPieces)
{
    constexpr off_t size = (20 << 20) + 5;
    const MemoryFile file;
    ASSERT_EQ(::ftruncate(file.descriptor(), size), 0);
    EarlyWriteback writeback(file.descriptor());
    writeback.advanceTo(10 << 20);
    calls().clear();
    EXPECT_TRUE(writeback.finish([] { return true; }));
    EXPECT_EQ(calls().front().flags, unsigned(SYNC_FILE_RANGE_WRITE));
    EXPECT_EQ(calls().front().offset, 10 << 20);
    EXPECT_EQ(calls().front().size, 0) << "up to the end of the file";
    EXPECT_GE(endOfCalls(SYNC_FILE_RANGE_WAIT_BEFORE), size);
    EXPECT_EQ(calls().size(), 1U + 21U);
}

TEST(EarlyWritebackTest, theEndCanBeCancelled)
{
    const MemoryFile file(std::string(5 << 20, 'a'));
    int pieces = 0;
    EXPECT_FALSE(EarlyWriteback(file.descriptor()).finish([&pieces] { return ++pieces < 2; }));
    EXPECT_EQ(pieces, 2);
}

TEST(EarlyWritebackTest, aFileThatCannotBeReadIsIgnored)
{
    EarlyWriteback writeback(-1);
    writeback.advanceToEnd();
    EXPECT_EQ(errno, EBADF);
}

} // namespace tarnwell::test
