// SPDX-License-Identifier: MIT
// Movie descriptions that are too large for the memory. The files are sparse.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"
#include "tools/MetadataBoxes.h"

#include <cstdint>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

constexpr std::uint64_t gibibyte = std::uint64_t(1) << 30U;
constexpr std::uint64_t hugeSize = 3 * gibibyte;
constexpr long mostMemory = 256L * 1024; // KiB; several times the memory for a small file

/// The header of a box with `size` zeros as its content. The caller adds the zeros as a hole.
std::string boxOfZeros(const std::string& type, std::uint64_t size)
{
    return bigEndian(1, 4) + type + bigEndian(size + 16, 8);
}

/// A movie whose description ends with a box of zeros. The caller adds the zeros as a hole.
std::string hugeMovie(const std::string& type, std::uint64_t size)
{
    const std::string parts = movieHeader() + track("vide") + boxOfZeros(type, size);
    return bigEndian(1, 4) + "moov" + bigEndian(parts.size() + size + 16, 8) + parts;
}

void writeWithZeros(int file, const std::string& bytes, std::uint64_t zeros)
{
    ASSERT_EQ(::pwrite(file, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    ASSERT_EQ(::ftruncate(file, static_cast<off_t>(bytes.size() + zeros)), 0);
}

/// The highest peak of resident memory of all ended child processes, in KiB.
long peakOfChildren()
{
    rusage usage = {};
    EXPECT_EQ(::getrusage(RUSAGE_CHILDREN, &usage), 0);
    return usage.ru_maxrss;
}

} // namespace

class LargeDescriptionTest : public CreatorTest
{
protected:
    /// Creates a file of this brand with a description of 3 GiB. Returns the arguments of a fix flag for it.
    std::vector<std::string> flagOfHugeFile(const std::string& brand, const std::string& part)
    {
        m_begin = fileType(brand) + box("mdat", std::string(1000, 'd')) + hugeMovie(part, hugeSize);
        const std::string path = tools.at("huge.mp4");
        const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        writeWithZeros(file, m_begin, hugeSize);
        ::close(file);
        auto arguments = fixFlag();
        arguments[1] = path;
        return arguments;
    }

    std::string m_begin; // the huge file before its zeros
};

TEST_F(LargeDescriptionTest, isCopiedWithoutTakingMemory)
{
    tools.setFfmpeg("error ffmpeg was started\\n\nexit 1\n");
    EXPECT_EQ(run(flagOfHugeFile("isom", "free")), 0);
    EXPECT_LT(peakOfChildren(), mostMemory);
    struct stat status = {};
    ASSERT_EQ(::stat(output().c_str(), &status), 0);
    EXPECT_EQ(static_cast<std::uint64_t>(status.st_size), m_begin.size() + hugeSize);
    EXPECT_LT(status.st_blocks * 512, 1 << 20);
}

TEST_F(LargeDescriptionTest, isNoMetadataForANewFile)
{
    setGoodFfmpeg();
    for (const std::string part : {"free", "udta", "meta", "uuid"}) {
        SCOPED_TRACE(part);
        EXPECT_EQ(run(flagOfHugeFile("qt  ", part)), 0);
        EXPECT_LT(peakOfChildren(), mostMemory);
        EXPECT_LT(contentsOf(output()).size(), 10000U);
    }
}

TEST_F(LargeDescriptionTest, ofANewFileStaysAsItIs)
{
    const MemoryFile source(smallMovie());
    const MemoryFile movie;
    const std::string begin = fileType() + hugeMovie("free", gibibyte);
    writeWithZeros(movie.descriptor(), begin, gibibyte);
    const pid_t child = ::fork();
    if (child == 0) {
        const auto result = addMetadata(movie.descriptor(), {source.descriptor(), {1}, {}, true});
        ::_exit(result == MetadataResult::NotAdded ? 0 : 1);
    }
    int status = 0;
    rusage usage = {};
    ASSERT_EQ(::wait4(child, &status, 0, &usage), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_LT(usage.ru_maxrss, mostMemory);
    std::string bytes(begin.size(), '\0');
    EXPECT_EQ(::pread(movie.descriptor(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    EXPECT_EQ(bytes, begin);
    EXPECT_EQ(static_cast<std::uint64_t>(::lseek(movie.descriptor(), 0, SEEK_END)), begin.size() + gibibyte);
}

} // namespace tarnwell::test
