// SPDX-License-Identifier: MIT
#include "tools/FileCopy.h"

#include "platform/TemporaryDirectory.h"
#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"
#include "tests/tools/RefusedCall.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

/// An unnamed file on the disk.
class DiskFile
{
public:
    DiskFile() { m_descriptor = ::open(m_folder.path().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600); }
    ~DiskFile() { ::close(m_descriptor); }
    DiskFile(const DiskFile&) = delete;
    DiskFile& operator=(const DiskFile&) = delete;

    int descriptor() const { return m_descriptor; }

    void writeAt(off_t offset, const std::string& bytes) const
    {
        EXPECT_EQ(
            ::pwrite(m_descriptor, bytes.data(), bytes.size(), offset), static_cast<ssize_t>(bytes.size()));
    }

    struct stat status() const
    {
        struct stat status = {};
        EXPECT_EQ(::fstat(m_descriptor, &status), 0);
        return status;
    }

    std::string contents() const
    {
        std::string bytes(static_cast<std::size_t>(status().st_size), '\0');
        EXPECT_EQ(::pread(m_descriptor, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        return bytes;
    }

private:
    TemporaryDirectory m_folder;
    int m_descriptor = -1;
};

const CopyProgress always = [](off_t) { return true; };

} // namespace

TEST(FileCopyTest, everyByteIsCopied)
{
    for (const std::size_t size : {0U, 1U, 4096U, 1048576U, 3000001U}) {
        const std::string bytes = movieOf(3000001).substr(0, size);
        const DiskFile source;
        const DiskFile target;
        source.writeAt(0, bytes);
        EXPECT_EQ(copyFile(source.descriptor(), target.descriptor(), static_cast<off_t>(size), always),
            CopyEnd::Copied);
        EXPECT_TRUE(target.contents() == bytes) << size;
    }
}

TEST(FileCopyTest, aFileOfAnotherFileSystemIsCopied)
{
    const std::string bytes = movieOf(3000001);
    const MemoryFile source(bytes);
    const DiskFile target;
    EXPECT_EQ(copyFile(source.descriptor(), target.descriptor(), static_cast<off_t>(bytes.size()), always),
        CopyEnd::Copied);
    EXPECT_TRUE(target.contents() == bytes);
}

TEST(FileCopyTest, aKernelThatDoesNotCopyIsNoFailure)
{
    EXPECT_TRUE(holdsWithout(RefusedCall::CopyFileRange, [] {
        const std::string bytes = movieOf(3000001);
        const DiskFile source;
        const DiskFile target;
        source.writeAt(0, bytes);
        return copyFile(source.descriptor(), target.descriptor(), static_cast<off_t>(bytes.size()), always)
            == CopyEnd::Copied
            && target.contents() == bytes;
    }));
}

TEST(FileCopyTest, progressComesPieceByPiece)
{
    EXPECT_TRUE(holdsWithout(RefusedCall::ShareBlocks, [] {
        const std::string bytes = movieOf(5000000);
        const DiskFile source;
        const DiskFile target;
        source.writeAt(0, bytes);
        std::vector<off_t> progress = {0};
        EXPECT_EQ(copyFile(source.descriptor(), target.descriptor(), static_cast<off_t>(bytes.size()),
                      [&progress](off_t copied) {
                          EXPECT_GE(copied, progress.back());
                          EXPECT_LE(copied - progress.back(), 1 << 20);
                          progress.push_back(copied);
                          return true;
                      }),
            CopyEnd::Copied);
        EXPECT_EQ(progress.back(), static_cast<off_t>(bytes.size()));
        return !testing::Test::HasFailure();
    }));
}

TEST(FileCopyTest, aCancelEndsItAfterThePiece)
{
    EXPECT_TRUE(holdsWithout(RefusedCall::ShareBlocks, [] {
        const DiskFile source;
        const DiskFile target;
        source.writeAt(0, movieOf(5000000));
        int calls = 0;
        EXPECT_EQ(copyFile(source.descriptor(), target.descriptor(), 5000000,
                      [&calls](off_t) { return ++calls < 2; }),
            CopyEnd::Cancelled);
        EXPECT_EQ(calls, 2);
        EXPECT_LE(target.status().st_size, 2 << 20);
        return !testing::Test::HasFailure();
    }));
}

TEST(FileCopyTest, aCancelCountsUntilTheDataIsOnTheDisk)
{
    EXPECT_TRUE(holdsWithout(RefusedCall::ShareBlocks, [] {
        const DiskFile source;
        const DiskFile target;
        source.writeAt(0, movieOf(5000000));
        int callsAtTheEnd = 0;
        return copyFile(source.descriptor(), target.descriptor(), 5000000, [&callsAtTheEnd](off_t copied) {
            return copied < 5000000 || ++callsAtTheEnd < 3;
        }) == CopyEnd::Cancelled;
    }));
}

TEST(FileCopyTest, aTargetThatCannotBeWrittenIsAFailure)
{
    const DiskFile source;
    source.writeAt(0, "bytes");
    const int target = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(copyFile(source.descriptor(), target, 5, always), CopyEnd::Failed);
    EXPECT_EQ(errno, EBADF);
    ::close(target);
}

TEST(FileCopyTest, aSourceThatIsTooShortIsAFailure)
{
    for (const std::size_t size : {0U, 3000000U, 4999999U}) {
        const DiskFile source;
        const DiskFile target;
        source.writeAt(0, movieOf(size));
        ASSERT_EQ(::ftruncate(source.descriptor(), static_cast<off_t>(size)), 0);
        EXPECT_EQ(copyFile(source.descriptor(), target.descriptor(), 5000000, always), CopyEnd::Failed);
        EXPECT_EQ(errno, EIO);
    }
}

TEST(FileCopyTest, aSourceThatIsEmptiedMeanwhileIsAFailure)
{
    const DiskFile source;
    const DiskFile target;
    source.writeAt(0, movieOf(5000000));
    EXPECT_EQ(copyFile(source.descriptor(), target.descriptor(), 5000000,
                  [&source](off_t) { return ::ftruncate(source.descriptor(), 0) == 0; }),
        CopyEnd::Failed);
    EXPECT_EQ(errno, EIO);
}

TEST(FileCopyTest, holesStayHoles)
{
    constexpr off_t size = 5'000'000'000;
    const std::string data = movieOf(10000);
    const DiskFile source;
    const DiskFile target;
    source.writeAt(0, data);
    source.writeAt(3'000'000'000, data);
    ASSERT_EQ(::ftruncate(source.descriptor(), size), 0);
    std::set<off_t> progress;
    EXPECT_EQ(copyFile(source.descriptor(), target.descriptor(), size,
                  [&progress](off_t copied) {
                      progress.insert(copied);
                      return true;
                  }),
        CopyEnd::Copied);
    EXPECT_EQ(target.status().st_size, size);
    EXPECT_LT(target.status().st_blocks * 512, 1 << 20);
    EXPECT_LT(progress.size(), 10U);
    std::string copied(data.size(), '\0');
    ASSERT_EQ(::pread(target.descriptor(), copied.data(), copied.size(), 3'000'000'000),
        static_cast<ssize_t>(copied.size()));
    EXPECT_TRUE(copied == data);
}

TEST(FileCopyTest, aCopyInOrderNeedsOneWritableEnd)
{
    const std::string data = movieOf(3 << 20);
    const DiskFile source;
    source.writeAt(0, data);
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0); // a pipe accepts calls of write only
    std::string copied;
    std::thread reader([&copied, end = ends[0]] {
        std::vector<char> piece(1 << 16);
        for (ssize_t count = 1; count > 0;) {
            count = ::read(end, piece.data(), piece.size());
            copied.append(piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
        }
    });
    off_t last = 0;
    EXPECT_EQ(copyFileInOrder(source.descriptor(), ends[1],
                  [&last](off_t size) {
                      last = size;
                      return true;
                  }),
        CopyEnd::Copied);
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    EXPECT_TRUE(copied == data);
    EXPECT_EQ(last, static_cast<off_t>(data.size()));
}

TEST(FileCopyTest, aCopyInOrderCanBeCancelledAndFails)
{
    const DiskFile source;
    const DiskFile target;
    source.writeAt(0, movieOf(3 << 20));
    EXPECT_EQ(copyFileInOrder(source.descriptor(), target.descriptor(), [](off_t) { return false; }),
        CopyEnd::Cancelled);
    EXPECT_EQ(target.status().st_size, 1 << 20);
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(copyFileInOrder(source.descriptor(), full, [](off_t) { return true; }), CopyEnd::Failed);
    EXPECT_EQ(errno, ENOSPC);
    ::close(full);
}

} // namespace tarnwell::test
