// SPDX-License-Identifier: MIT
// Every call of the system that the tools make fails in turn, the first time, the second, and so on.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"

#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Words = std::vector<std::string>;

const std::string library = TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so";
constexpr int mostTimes = 200;

} // namespace

class FailingCallsTest : public CreatorTest, public testing::WithParamInterface<std::string>
{
protected:
    /// Makes the call fail once, at that time; absent where the tool does not make it so often.
    std::optional<int> statusWith(int time, const std::string& program, const Words& arguments)
    {
        const std::string note = tools.addData("failed", "");
        std::filesystem::remove(note);
        ToolSetup setup;
        setup.variables = {"LD_PRELOAD=" + library, "TARNWELL_FAILED=" + note,
            "TARNWELL_FAILS=" + GetParam() + " " + std::to_string(time)};
        ToolProcess process(program, arguments, setup);
        const int status = process.wait();
        m_output = process.output();
        return exists(note) ? std::optional(status) : std::nullopt;
    }

    /// Whole or not there at all, and an older file never lost.
    void expectGoodEnding(int status, std::size_t otherSize = 0)
    {
        const std::string now = contentsOf(output());
        const std::string previous = contentsOf(tools.at("Rotated (previous).mp4"));
        EXPECT_TRUE(status == 0 || status == 1 || status == 255) << status;
        if (status == 0) {
            EXPECT_TRUE(now.size() == movie().size() || now.size() == otherSize) << now.size();
        } else {
            EXPECT_TRUE(now == "older" || previous == "older") << now;
        }
        for (const auto& name : otherNames()) {
            EXPECT_TRUE(name.starts_with("Rotated") || GetParam() == "unlinkat") << name;
            std::filesystem::remove(tools.at(name));
        }
    }

    std::string m_output;
};

TEST_P(FailingCallsTest, aVideoIsMadeWholeOrNotAtAll)
{
    setGoodFfmpeg("print out_time_us=1000000\\nprogress=continue\\n\nerror complaint\\n\n");
    for (const Words& arguments : {transcode(), fixFlag()}) {
        int time = 0;
        for (bool failed = true; failed && time < mostTimes;) {
            SCOPED_TRACE(testing::Message() << GetParam() << " " << ++time);
            writeFile(output(), "older");
            const auto status = statusWith(time, tools.creator(), arguments);
            expectGoodEnding(status.value_or(0));
            failed = status.has_value();
        }
        EXPECT_LT(time, mostTimes);
        std::cout << GetParam() << " failed " << time - 1 << " times\n";
    }
}

TEST_P(FailingCallsTest, aCopyIsMadeWholeOrNotAtAll)
{
    setGoodFfmpeg();
    const std::string input = movieOf(GetParam() == "sync_file_range" ? 9 << 20 : 2 << 20);
    setInput(input);
    int time = 0;
    for (bool failed = true; failed && time < mostTimes;) {
        SCOPED_TRACE(testing::Message() << GetParam() << " " << ++time);
        writeFile(output(), "older");
        const auto status = statusWith(time, tools.creator(), fixFlag());
        expectGoodEnding(status.value_or(0), input.size());
        failed = status.has_value();
    }
    const std::set<std::string> needed
        = {"pread", "pwrite", "lseek", "ioctl", "copy_file_range", "sync_file_range"};
    EXPECT_TRUE(time > 1 || !needed.contains(GetParam())) << "it is never called";
    EXPECT_LT(time, mostTimes);
    std::cout << GetParam() << " failed " << time - 1 << " times\n";
}

TEST_P(FailingCallsTest, aStillOrNone)
{
    setGoodFfmpeg();
    const std::string picture = tools.at("still.jpg");
    int time = 0;
    for (bool failed = true; failed && time < mostTimes;) {
        SCOPED_TRACE(testing::Message() << GetParam() << " " << ++time);
        const auto status = statusWith(time, tools.creator(), still("1.5", picture));
        EXPECT_EQ(status.value_or(0) == 0, contentsOf(picture).starts_with("\xFF\xD8"));
        failed = status.has_value();
        std::filesystem::remove(picture);
    }
    EXPECT_LT(time, mostTimes);
}

TEST_P(FailingCallsTest, aReportIsWholeOrSaysSoByItsStatus)
{
    int time = 0;
    const Words arguments = {"-v", "quiet", input()};
    const std::string whole = [&] {
        ToolProcess process(tools.sniffer(), arguments);
        process.wait();
        return process.output();
    }();
    for (bool failed = true; failed && time < mostTimes;) {
        SCOPED_TRACE(testing::Message() << GetParam() << " " << ++time);
        const auto status = statusWith(time, tools.sniffer(), arguments);
        EXPECT_TRUE(m_output == whole || status.value_or(0) != 0) << m_output;
        failed = status.has_value();
    }
    EXPECT_LT(time, mostTimes);
}

INSTANTIATE_TEST_SUITE_P(Calls, FailingCallsTest,
    testing::Values("pipe2", "fork", "read", "write", "pwrite", "poll", "waitid", "waitpid", "stat", "lstat",
        "fstat", "open", "fsync", "ftruncate", "pread", "lseek", "ioctl", "copy_file_range",
        "sync_file_range", "linkat", "renameat2", "unlinkat", "openat", "fstatat", "fchmod"),
    [](const auto& call) { return call.param; });

} // namespace tarnwell::test
