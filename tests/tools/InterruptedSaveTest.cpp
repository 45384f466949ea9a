// SPDX-License-Identifier: MIT
// Cancels and kills creator at each call that finishes a file, and makes each of these calls fail.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/TestToken.h"

#include <csignal>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr int cancelled = 255;
constexpr int mostTimes = 50;
const std::string previous = "Rotated (previous).mp4";

/// A file system that lacks some operations.
struct FileSystem {
    const char* name;
    std::vector<RefusedCall> refused;
};

const std::vector<FileSystem> fileSystems = {
    {"all", {}},
    {"noUnnamedFiles", {RefusedCall::OpenNameless}},
    {"noRenameFlags", {RefusedCall::OpenNameless, RefusedCall::RenameToFreeName}},
    {"noLinks", {RefusedCall::OpenNameless, RefusedCall::RenameToFreeName, RefusedCall::Link}},
};

const std::vector<std::string> calls
    = {"fsync", "linkat", "renameat2", "renameat", "unlinkat", "fstatat", "openat"};

bool isAlwaysCalled(const std::string& call)
{
    return call == "fsync" || call == "fstatat" || call == "openat";
}

void PrintTo(const FileSystem& fileSystem, std::ostream* stream)
{
    *stream << fileSystem.name;
}

} // namespace

class InterruptedSaveTest : public CreatorTest, public testing::WithParamInterface<FileSystem>
{
protected:
    void SetUp() override
    {
        CreatorTest::SetUp();
        setGoodFfmpeg();
    }

    /// Starts a save, sends the signal during occurrence `time` of the call, and waits for the end. False if
    /// creator makes fewer such calls. Sets `m_status` to the exit status.
    bool interrupt(int time, int signal)
    {
        const std::string goOn = tools.addData("go on", "");
        std::filesystem::remove(goOn);
        std::filesystem::remove(goOn + ".waiting");
        const TestToken token(m_isTokenTaken);
        ToolSetup setup;
        setup.refused = GetParam().refused;
        setup.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
            "TARNWELL_FAILS=" + m_call + " " + std::to_string(time), "TARNWELL_WAITS_FOR=" + goOn,
            token.variable()};
        ToolProcess creator(tools.creator(), transcode(), setup);
        const auto hasCalledOrEnded
            = [&] { return exists(goOn + ".waiting") || !isRunning(creator.processId()); };
        if (!waitFor(hasCalledOrEnded)) {
            ADD_FAILURE() << "creator neither ended nor called " << m_call;
            return false;
        }
        const bool isWaiting = exists(goOn + ".waiting");
        if (isWaiting)
            creator.signal(signal);
        if (signal != SIGKILL)
            writeFile(goOn, "");
        m_status = creator.wait();
        return isWaiting;
    }

    /// Calls `check` with the exit status after a failure of the first occurrence of each call, of the
    /// second, and so on.
    template <typename Check>
    void failEachCall(Check check)
    {
        for (const auto& call : calls) {
            m_call = call;
            failCall(check);
        }
    }

    template <typename Check>
    void failCall(Check check)
    {
        const std::string note = tools.addData("failed", "");
        int time = 0;
        do {
            SCOPED_TRACE(testing::Message() << m_call << " " << ++time);
            std::filesystem::remove(note);
            writeFile(output(), "older");
            const TestToken token(m_isTokenTaken);
            ToolSetup setup;
            setup.refused = GetParam().refused;
            setup.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
                "TARNWELL_FAILS=" + m_call + " " + std::to_string(time), "TARNWELL_FAILED=" + note,
                token.variable()};
            ToolProcess creator(tools.creator(), transcode(), setup);
            check(creator.wait());
            removeAll();
        } while (exists(note) && time < mostTimes);
        EXPECT_LT(time, mostTimes);
    }

    void removeAll()
    {
        for (const auto& name : otherNames())
            std::filesystem::remove(tools.at(name));
    }

    /// Calls `check` after an interruption at the first occurrence of each call, at the second, and so on.
    template <typename Check>
    void interruptEachCall(int signal, const std::string& older, Check check)
    {
        for (const auto& call : calls) {
            m_call = call;
            interruptCall(signal, older, check);
        }
    }

    template <typename Check>
    void interruptCall(int signal, const std::string& older, Check check)
    {
        int time = 0;
        bool isInterrupted = true;
        while (isInterrupted && time < mostTimes) {
            SCOPED_TRACE(testing::Message() << m_call << " " << ++time);
            if (!older.empty())
                writeFile(output(), older);
            isInterrupted = interrupt(time, signal);
            if (signal == SIGKILL && isInterrupted)
                EXPECT_EQ(m_status, 128 + SIGKILL);
            else if (isInterrupted && !isDeletionOfOlder(older))
                EXPECT_EQ(m_status, cancelled);
            else
                EXPECT_EQ(m_status, m_isTokenTaken ? cancelled : 0);
            check();
            removeAll();
        }
        EXPECT_LT(time, mostTimes);
        EXPECT_TRUE(time > 1 || !isAlwaysCalled(m_call)) << "it is never called";
    }

    /// A signal during the deletion of the older file comes too late.
    bool isDeletionOfOlder(const std::string& older) const
    {
        return !older.empty() && m_call == "unlinkat" && m_status == 0;
    }

    std::string m_call; // that is interrupted or fails
    int m_status = -1;
    bool m_isTokenTaken = false; // by the application, for a cancel
};

TEST_P(InterruptedSaveTest, aCancelLeavesTheOlderFileOrTheNewOneAndNothingElse)
{
    interruptEachCall(SIGTERM, "older", [this] {
        if (m_status == 0) {
            EXPECT_EQ(contentsOf(output()), movie());
            EXPECT_EQ(otherNames(), std::vector<std::string>({"Rotated.mp4"}));
            return;
        }
        expectOnlyOlderFile();
    });
}

TEST_P(InterruptedSaveTest, aCancelLeavesNothingWhereNothingWas)
{
    interruptEachCall(SIGTERM, "", [this] {
        EXPECT_TRUE(m_status == cancelled ? otherNames().empty() : contentsOf(output()) == movie())
            << m_status;
    });
}

TEST_P(InterruptedSaveTest, aKillLeavesTheOlderFileUnderItsNameOrPutAside)
{
    interruptEachCall(SIGKILL, "older", [this] {
        const std::string now = contentsOf(output());
        const std::string aside = contentsOf(tools.at(previous));
        // The last call deletes the older file; a killed process has not made this call.
        const bool hasOlder = now == "older" || aside == "older";
        EXPECT_TRUE(m_status == 0 ? now == movie() : hasOlder) << m_status;
        EXPECT_TRUE(now.empty() || now == "older" || now == movie());
        for (const auto& name : otherNames())
            EXPECT_TRUE(name == "Rotated.mp4" || name == previous || name[0] == '.') << name;
    });
}

TEST_P(InterruptedSaveTest, aKillWhileTheMoveIsUndoneLeavesTheOlderFile)
{
    m_isTokenTaken = true;
    interruptEachCall(SIGKILL, "older", [this] {
        EXPECT_TRUE(contentsOf(output()) == "older" || contentsOf(tools.at(previous)) == "older");
        for (const auto& name : otherNames())
            EXPECT_TRUE(name == "Rotated.mp4" || name == previous || name[0] == '.') << name;
    });
}

TEST_P(InterruptedSaveTest, aFailureOfACallWhileTheMoveIsUndoneLosesNothing)
{
    m_isTokenTaken = true;
    failEachCall([this](int status) {
        EXPECT_NE(status, 0);
        EXPECT_TRUE(contentsOf(output()) == "older" || contentsOf(tools.at(previous)) == "older");
    });
}

TEST_P(InterruptedSaveTest, aFailureOfACallLosesNothing)
{
    failEachCall([this](int status) {
        const std::string now = contentsOf(output());
        EXPECT_TRUE(status == 0 ? now == movie() : now.empty() || now == "older") << status;
        EXPECT_TRUE(status == 0 || now == "older" || contentsOf(tools.at(previous)) == "older");
    });
}

INSTANTIATE_TEST_SUITE_P(FileSystems, InterruptedSaveTest, testing::ValuesIn(fileSystems),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace tarnwell::test
