// SPDX-License-Identifier: MIT
#include "platform/Diagnostics.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <set>
#include <sstream>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

TEST(DiagnosticsTest, aLineEndsInOneLineFeed)
{
    testing::internal::CaptureStdout();
    printLine("Percent : 12.5");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Percent : 12.5\n");
}

TEST(DiagnosticsTest, anEmptyLineIsALineFeed)
{
    testing::internal::CaptureStdout();
    printLine("");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n");
}

TEST(DiagnosticsTest, bytesAreWrittenAsTheyAre)
{
    testing::internal::CaptureStdout();
    printLine(std::string_view("a\0%s\xFF\xC3\xA9", 7));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string("a\0%s\xFF\xC3\xA9\n", 8));
}

TEST(DiagnosticsTest, nothingGoesToStandardError)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    printLine("a line");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::GetCapturedStdout();
}

TEST(DiagnosticsTest, linesOfSeveralThreadsDoNotMix)
{
    constexpr int linesPerThread = 200;
    const std::string texts[] = {std::string(300, 'a'), std::string(300, 'b'), std::string(300, 'c')};
    testing::internal::CaptureStdout();
    {
        std::vector<std::jthread> writers;
        for (const auto& text : texts) {
            writers.emplace_back([&text] {
                for (int line = 0; line < linesPerThread; ++line)
                    printLine(text);
            });
        }
    }
    std::istringstream printed(testing::internal::GetCapturedStdout());
    std::multiset<std::string> lines;
    for (std::string line; std::getline(printed, line);)
        lines.insert(line);
    EXPECT_EQ(lines.size(), std::size(texts) * linesPerThread);
    for (const auto& text : texts)
        EXPECT_EQ(lines.count(text), linesPerThread);
}

TEST(DiagnosticsDeathTest, aLineIsOutBeforeTheProgramCanBeStopped)
{
    EXPECT_EXIT(
        {
            ::dup2(STDERR_FILENO, STDOUT_FILENO);
            printLine("in time");
            std::_Exit(0); // nothing is written any more
        },
        testing::ExitedWithCode(0), "^in time\n$");
}

TEST(DiagnosticsDeathTest, aClosedOutputLosesTheLineAndNothingElse)
{
    EXPECT_EXIT(
        {
            ::close(STDOUT_FILENO);
            printLine("lost");
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "^$");
}

TEST(DiagnosticsDeathTest, aPipeThatNobodyReadsLosesLinesAndIsNotWaitedFor)
{
    EXPECT_EXIT(
        {
            int ends[2] = {};
            std::ignore = ::pipe(ends);
            ::dup2(ends[1], STDOUT_FILENO);
            for (int line = 0; line < 100000; ++line)
                printLine("a line of which a pipe does not hold so many");
            std::string held(100000, '\0');
            held.resize(static_cast<std::size_t>(::read(ends[0], held.data(), held.size())));
            std::_Exit(held.starts_with("a line of") && held.ends_with("many\n") ? 0 : 1);
        },
        testing::ExitedWithCode(0), "^$");
}

TEST(DiagnosticsDeathTest, aFullOutputLosesTheLineAndNothingElse)
{
    EXPECT_EXIT(
        {
            ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
            printLine("lost");
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "^$");
}

} // namespace tarnwell::test
