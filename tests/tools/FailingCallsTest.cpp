// SPDX-License-Identifier: MIT
// Every system call of the tools fails in turn: its first occurrence, its second one, and so on.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"

#include <filesystem>
#include <functional>
#include <iostream>
#include <set>
#include <string>

namespace tarnwell::test
{

namespace
{

const std::string library = TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so";
constexpr int mostRuns = 200;

} // namespace

class FailingCallsTest : public CreatorTest, public testing::WithParamInterface<std::string>
{
protected:
    /// Runs the tool repeatedly, with another occurrence of the call failing each time, until the tool makes
    /// fewer such calls. Calls `check` with the exit status of each run. Returns the number of failed calls.
    int failEachCall(
        const std::string& program, const Words& arguments, const std::function<void(int status)>& check)
    {
        const std::string note = tools.addData("failed", "");
        for (int time = 1; time < mostRuns; ++time) {
            SCOPED_TRACE(testing::Message() << GetParam() << " " << time);
            std::filesystem::remove(note);
            if (m_hasOlderFile)
                writeFile(output(), "older");
            ToolProcess process(program, arguments,
                {.variables = {"LD_PRELOAD=" + library, "TARNWELL_FAILED=" + note,
                     "TARNWELL_FAILS=" + GetParam() + " " + std::to_string(time)},
                    .refused = {RefusedCall::ShareBlocks}});
            const int status = process.wait();
            m_printed = process.output();
            check(status);
            if (!exists(note)) {
                EXPECT_EQ(status, 0);
                std::cout << GetParam() << " failed " << time - 1 << " times\n";
                return time - 1;
            }
        }
        ADD_FAILURE() << "the call still fails after " << mostRuns << " runs";
        return mostRuns;
    }

    /// Expects a complete output or none, and an older file that still exists.
    void expectGoodEnding(int status, std::size_t otherSize = 0)
    {
        const std::string now = contentsOf(output());
        const std::string previous = contentsOf(previousPath());
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

    bool m_hasOlderFile = true; // at the output's path
    std::string m_printed;
};

TEST_P(FailingCallsTest, aVideoIsMadeWholeOrNotAtAll)
{
    setGoodFfmpeg("print out_time_us=1000000\\nprogress=continue\\n\nerror message\\n\n");
    for (const Words& arguments : {transcode(), fixFlag()})
        failEachCall(tools.creator(), arguments, [this](int status) { expectGoodEnding(status); });
}

TEST_P(FailingCallsTest, aCopyIsMadeWholeOrNotAtAll)
{
    setGoodFfmpeg();
    const std::string bytes = movieOf(GetParam() == "sync_file_range" ? 9 << 20 : 2 << 20);
    setInput(bytes);
    const int times = failEachCall(
        tools.creator(), fixFlag(), [&](int status) { expectGoodEnding(status, bytes.size()); });
    const std::set<std::string> needed
        = {"pread", "pwrite", "lseek", "ioctl", "copy_file_range", "sync_file_range"};
    EXPECT_TRUE(times > 0 || !needed.contains(GetParam())) << "it is never called";
}

TEST_P(FailingCallsTest, aStillIsAPictureOrMissing)
{
    setGoodFfmpeg();
    m_hasOlderFile = false;
    const std::string picture = tools.at("still.jpg");
    failEachCall(tools.creator(), still("1.5", picture), [&picture](int status) {
        EXPECT_EQ(status == 0, contentsOf(picture).starts_with("\xFF\xD8"));
        std::filesystem::remove(picture);
    });
}

TEST_P(FailingCallsTest, aReportIsWholeOrTheStatusIsNotZero)
{
    const Words arguments = {"-v", "quiet", input()};
    m_hasOlderFile = false;
    ToolProcess process(tools.sniffer(), arguments);
    EXPECT_EQ(process.wait(), 0);
    failEachCall(tools.sniffer(), arguments, [this, whole = process.output()](int status) {
        EXPECT_TRUE(m_printed == whole || status != 0) << m_printed;
    });
}

INSTANTIATE_TEST_SUITE_P(Calls, FailingCallsTest,
    testing::Values("pipe2", "fork", "read", "write", "pwrite", "poll", "waitid", "waitpid", "stat", "lstat",
        "fstat", "open", "fsync", "ftruncate", "pread", "lseek", "ioctl", "copy_file_range",
        "sync_file_range", "linkat", "renameat2", "unlinkat", "openat", "fstatat", "fchmod", "fremovexattr"),
    [](const auto& call) { return call.param; });

} // namespace tarnwell::test
