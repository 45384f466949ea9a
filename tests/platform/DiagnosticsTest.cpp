// SPDX-License-Identifier: MIT
#include "platform/Diagnostics.h"

#include "tests/support/TimeLimit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <map>
#include <poll.h>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Lines = std::vector<std::string>;

/// Replaces standard output by a pipe. Expectations must follow its destruction, because GoogleTest prints to
/// standard output too.
class PipedOutput
{
public:
    PipedOutput()
    {
        std::fflush(stdout);
        if (::pipe2(m_ends.data(), O_CLOEXEC) != 0)
            std::abort();
        ::dup2(m_ends[1], STDOUT_FILENO);
        ::close(m_ends[1]);
    }
    ~PipedOutput()
    {
        ::dup2(m_original, STDOUT_FILENO);
        ::close(m_ends[0]);
        ::close(m_original);
    }
    PipedOutput(const PipedOutput&) = delete;
    PipedOutput& operator=(const PipedOutput&) = delete;

    int readingEnd() const { return m_ends[0]; }

private:
    int m_original = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    std::array<int, 2> m_ends{};
};

/// Reads until `isComplete` returns true for the text so far, the writer closes, or nothing comes for a
/// minute.
template <typename Predicate>
std::string readUntil(int descriptor, Predicate isComplete)
{
    constexpr int limit = 60000; // milliseconds
    std::string all;
    std::array<char, 4096> block{};
    pollfd input = {descriptor, POLLIN, 0};
    while (!isComplete(all) && ::poll(&input, 1, limit) > 0) {
        const auto count = ::read(descriptor, block.data(), block.size());
        if (count <= 0)
            break;
        all.append(block.data(), static_cast<std::size_t>(count));
    }
    return all;
}

std::string readToEnd(int descriptor)
{
    return readUntil(descriptor, [](const std::string&) { return false; });
}

std::string readLines(int descriptor, long count)
{
    return readUntil(
        descriptor, [count, seen = 0L, searched = std::size_t{0}](const std::string& all) mutable {
            seen += std::count(all.begin() + static_cast<long>(searched), all.end(), '\n');
            searched = all.size();
            return seen >= count;
        });
}

Lines splitLines(const std::string& text)
{
    std::istringstream stream(text);
    Lines lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string numberedLine(int number)
{
    return "Percent : " + std::to_string(number);
}

/// The lines "Percent : 0" to "Percent : count - 1", each with its line feed.
std::string numberedLines(int count)
{
    std::string text;
    for (int number = 0; number < count; ++number)
        text += numberedLine(number) + "\n";
    return text;
}

void printNumberedLines(int count)
{
    for (int number = 0; number < count; ++number)
        printLine(numberedLine(number));
}

long threadCount()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

constexpr int moreThanAPipeHolds = 20000; // lines

} // namespace

TEST(DiagnosticsTest, aLineIsItsBytesAndALineFeed)
{
    const std::string binary("a\0%s\xFF\xC3\xA9", 7);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    printLine("Percent : 12.5");
    printLine("");
    printLine(binary);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Percent : 12.5\n\n" + binary + "\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

class DiagnosticsThreadsTest : public testing::TestWithParam<std::size_t>
{
};

TEST_P(DiagnosticsThreadsTest, printWholeLines)
{
    constexpr int linesPerThread = 25; // the longest lines must fit the queue of 16 MiB
    constexpr int threadCount = 4;
    std::string printed;
    {
        const PipedOutput output;
        std::vector<std::jthread> writers;
        for (int thread = 0; thread < threadCount; ++thread) {
            writers.emplace_back([line = std::string(GetParam(), static_cast<char>('a' + thread))] {
                for (int count = 0; count < linesPerThread; ++count)
                    printLine(line);
            });
        }
        printed = readLines(output.readingEnd(), long{linesPerThread} * threadCount);
    }
    std::map<std::string, int> counts;
    for (const auto& line : splitLines(printed))
        ++counts[line];
    std::map<std::string, int> expected;
    for (int thread = 0; thread < threadCount; ++thread)
        expected[std::string(GetParam(), static_cast<char>('a' + thread))] = linesPerThread;
    EXPECT_EQ(counts, expected);
}

INSTANTIATE_TEST_SUITE_P(LineSizes, DiagnosticsThreadsTest,
    testing::Values(std::size_t{300}, std::size_t{3 * PIPE_BUF + 17}, std::size_t{100000}));

TEST(DiagnosticsPipeTest, aReaderThatStartsLateGetsEveryLine)
{
    std::string printed;
    {
        const PipedOutput output;
        printNumberedLines(moreThanAPipeHolds);
        printed = readLines(output.readingEnd(), moreThanAPipeHolds);
    }
    EXPECT_EQ(printed, numberedLines(moreThanAPipeHolds));
}

TEST(DiagnosticsPipeTest, aNonBlockingPipeGetsEveryLineToo)
{
    std::string printed;
    {
        const PipedOutput output;
        ::fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
        printNumberedLines(moreThanAPipeHolds);
        printLine(std::string(300000, 'x'));
        printed = readLines(output.readingEnd(), moreThanAPipeHolds + 1);
    }
    EXPECT_EQ(printed, numberedLines(moreThanAPipeHolds) + std::string(300000, 'x') + "\n");
}

TEST(DiagnosticsPipeTest, blockingModeOfTheOutputIsNotChanged)
{
    int flags = O_NONBLOCK;
    {
        const PipedOutput output;
        printLine("line");
        readLines(output.readingEnd(), 1);
        flags = ::fcntl(STDOUT_FILENO, F_GETFL);
    }
    EXPECT_EQ(flags & O_NONBLOCK, 0);
}

TEST(DiagnosticsPipeTest, withoutAReaderWholeLinesAreDroppedAndNoCallHangs)
{
    constexpr std::size_t threeTimesTheQueue = std::size_t{48} << 20U; // bytes
    const std::string line(100000, 'x');
    std::string printed;
    {
        const PipedOutput output;
        for (std::size_t bytes = 0; bytes < threeTimesTheQueue; bytes += line.size())
            printLine(line);
        printed = readLines(output.readingEnd(), 150);
        printLine("the end"); // the queue has room again
        printed += readUntil(
            output.readingEnd(), [](const std::string& all) { return all.ends_with("\nthe end\n"); });
    }
    EXPECT_LT(printed.size(), std::size_t{20} << 20U);
    EXPECT_GT(printed.size(), std::size_t{15} << 20U);
    const Lines lines = splitLines(printed);
    EXPECT_EQ(lines.back(), "the end");
    for (std::size_t index = 0; index + 1 < lines.size(); ++index)
        ASSERT_TRUE(lines[index] == line) << "line " << index << " of " << lines[index].size() << " bytes";
}

/// Tests that end the process or need one that has printed nothing yet. Each statement runs in a new process
/// that executes the test program again.
class DiagnosticsDeathTest : public testing::Test
{
protected:
    DiagnosticsDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(DiagnosticsDeathTest, aLineToAFileIsWrittenBeforeAnImmediateEnd)
{
    EXPECT_EXIT(
        {
            ::dup2(STDERR_FILENO, STDOUT_FILENO);
            const auto threads = threadCount();
            printLine("in time");
            std::_Exit(threadCount() == threads ? 0 : 1); // no writer thread has started
        },
        testing::ExitedWithCode(0), "^in time\n$");
}

// A line that precedes a fatal error must not be lost. The wait is limited to 100 ms, which a busy machine
// may exceed for a single line, but not for most of them.
TEST(DiagnosticsPipeTest, aLineForAPipeWithRoomIsThereWhenTheCallReturns)
{
    constexpr int lineCount = 20;
    int inTime = 0;
    {
        const PipedOutput output;
        for (int line = 0; line < lineCount; ++line) {
            printLine("line");
            int unread = 0;
            ::ioctl(output.readingEnd(), FIONREAD, &unread);
            inTime += unread > 0 ? 1 : 0;
            readLines(output.readingEnd(), 1);
        }
    }
    EXPECT_GT(inTime, lineCount / 2);
}

/// How a process ends whose queue still holds lines.
struct EndCase {
    std::string name;
    void (*end)();
};

class DiagnosticsEndDeathTest : public DiagnosticsDeathTest, public testing::WithParamInterface<EndCase>
{
protected:
    /// A child process prints more lines than the pipe holds and ends. Reads nothing before the child has
    /// printed the last of them. Returns what the child printed.
    static std::string linesOfEndingProcess(void (*end)())
    {
        startTimeLimit(longestWait, "the process with queued lines did not end");
        std::array<int, 2> output{};
        std::array<int, 2> signal{};
        if (::pipe(output.data()) != 0 || ::pipe(signal.data()) != 0)
            std::abort();
        std::fflush(stdout); // otherwise the child's exit prints the buffer too
        const pid_t child = ::fork();
        if (child == 0) {
            ::dup2(output[1], STDOUT_FILENO);
            for (const int descriptor : {output[0], output[1], signal[0]})
                ::close(descriptor);
            printNumberedLines(moreThanAPipeHolds);
            ::close(signal[1]);
            end();
        }
        ::close(output[1]);
        ::close(signal[1]);
        readToEnd(signal[0]);
        std::string printed = readToEnd(output[0]);
        ::waitpid(child, nullptr, 0);
        return printed;
    }
};

TEST_P(DiagnosticsEndDeathTest, printsTheQueuedLinesFirst)
{
    EXPECT_EXIT(std::_Exit(linesOfEndingProcess(GetParam().end) == numberedLines(moreThanAPipeHolds) ? 0 : 1),
        testing::ExitedWithCode(0), "^$");
}

INSTANTIATE_TEST_SUITE_P(Ends, DiagnosticsEndDeathTest,
    testing::Values(EndCase{"exit", [] { std::exit(0); }}, EndCase{"quickExit", [] { std::quick_exit(0); }}),
    [](const auto& row) { return row.param.name; });

TEST_F(DiagnosticsDeathTest, anEndWithoutAReaderIsReached)
{
    EXPECT_EXIT(
        {
            const PipedOutput output;
            printNumberedLines(moreThanAPipeHolds);
            std::quick_exit(0);
        },
        testing::ExitedWithCode(0), "^$");
}

/// What makes every write to standard output fail.
struct RefusalCase {
    std::string name;
    void (*prepare)();
};

class DiagnosticsRefusalDeathTest : public DiagnosticsDeathTest,
                                    public testing::WithParamInterface<RefusalCase>
{
};

TEST_P(DiagnosticsRefusalDeathTest, dropsTheLinesAndTheProcessEndsNormally)
{
    EXPECT_EXIT(
        {
            GetParam().prepare();
            printNumberedLines(moreThanAPipeHolds);
            std::quick_exit(0);
        },
        testing::ExitedWithCode(0), "^$");
}

INSTANTIATE_TEST_SUITE_P(Outputs, DiagnosticsRefusalDeathTest,
    testing::Values(RefusalCase{"closed", [] { ::close(STDOUT_FILENO); }},
        RefusalCase{"full", [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); }},
        RefusalCase{"pipeWithoutAReader",
            [] {
                std::signal(SIGPIPE, SIG_IGN); // as prepareStandardStreams sets it
                std::array<int, 2> ends{};
                if (::pipe(ends.data()) != 0)
                    std::abort();
                ::dup2(ends[1], STDOUT_FILENO);
                ::close(ends[0]);
            }}),
    [](const auto& row) { return row.param.name; });

/// Limits the size of the files that this process writes, as a full disk does: a write is cut at the limit.
void limitFileSize(rlim_t bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(DiagnosticsDeathTest, aLineCutByAFullDiskIsCompletedBeforeTheNextOne)
{
    EXPECT_EXIT(
        {
            ::dup2(::fileno(std::tmpfile()), STDOUT_FILENO);
            limitFileSize(10);
            printLine("123456");
            printLine("cut here");
            printLine("dropped");
            limitFileSize(1000);
            printLine("next");
            ::lseek(STDOUT_FILENO, 0, SEEK_SET);
            std::cerr << readToEnd(STDOUT_FILENO);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "^123456\ncut here\nnext\n$");
}

} // namespace tarnwell::test
