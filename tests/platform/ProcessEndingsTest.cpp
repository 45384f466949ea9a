// SPDX-License-Identifier: MIT
#include "tests/platform/ProcessTestSetup.h"
#include "tests/support/Files.h"

#include <filesystem>
#include <thread>

namespace tarnwell::test
{

struct EndingCase {
    std::string name;
    std::string script;
};

class ProcessEndingTest : public ProcessTestSetup, public testing::WithParamInterface<EndingCase>
{
};

// The child ends by itself: the wait returns, a second wait returns, and terminate reaches no process.
TEST_P(ProcessEndingTest, isWaitedForAndLeavesNothingToTerminate)
{
    setScript("print it ran\n" + GetParam().script);
    launch();
    m_process->waitUntilExit();
    EXPECT_EQ(printed(), "it ran");
    m_process->terminate();
    m_process->waitUntilExit();
}

INSTANTIATE_TEST_SUITE_P(Endings, ProcessEndingTest,
    testing::Values(EndingCase{"exitZero", "exit 0"}, EndingCase{"exitThree", "exit 3"},
        EndingCase{"exit255", "exit 255"}, EndingCase{"killedBySigkill", "die 9"},
        EndingCase{"killedBySigsegv", "die 11"}),
    [](const auto& row) { return row.param.name; });

class ProcessStartTest : public ProcessTestSetup
{
protected:
    /// The launch says why, the reader sees the end at once, and neither a wait nor a termination does
    /// anything.
    void expectNotStarted(std::errc reason)
    {
        EXPECT_EQ(m_process->launch(), std::make_error_condition(reason));
        EXPECT_EQ(printed(), "");
        m_process->terminate();
        m_process->waitUntilExit();
    }
};

TEST_F(ProcessStartTest, aMissingProgramDoesNotStart)
{
    m_process->setExecutable(path("missing"));
    expectNotStarted(std::errc::no_such_file_or_directory);
}

TEST_F(ProcessStartTest, aProgramWithoutAPathDoesNotStart)
{
    expectNotStarted(std::errc::no_such_file_or_directory);
}

TEST_F(ProcessStartTest, aFileThatIsNotExecutableDoesNotStart)
{
    writeFile(path("creator"), "#!/bin/sh\n");
    m_process->setExecutable(path("creator"));
    expectNotStarted(std::errc::permission_denied);
}

TEST_F(ProcessStartTest, aFolderDoesNotStart)
{
    m_process->setExecutable(m_tools.folder());
    expectNotStarted(std::errc::permission_denied);
}

TEST_F(ProcessStartTest, anExecutableThatIsNoProgramDoesNotStart)
{
    writeFile(path("creator"), "rubbish");
    std::filesystem::permissions(path("creator"), std::filesystem::perms::owner_all);
    m_process->setExecutable(path("creator"));
    expectNotStarted(std::errc::executable_format_error);
}

TEST_F(ProcessStartTest, aChildWhosePipeIsMissingDoesNotStart)
{
    setScript("touch " + path("ran"));
    m_output->closeWriting(); // what a pipe looks like that the system refused
    expectNotStarted(std::errc::too_many_files_open);
    EXPECT_FALSE(exists(path("ran")));
}

class ProcessTerminationTest : public ProcessTestSetup
{
};

TEST_F(ProcessTerminationTest, theChildReceivesSigterm)
{
    setScript("on-termination " + path("terminated") + "\nprint ready\nhang");
    launch();
    EXPECT_EQ(nextPrinted(), "ready");
    m_process->terminate();
    m_process->waitUntilExit();
    EXPECT_EQ(contentsOf(path("terminated")), "SIGTERM");
}

TEST_F(ProcessTerminationTest, aProgramWithoutAnyHandlerIsEnded)
{
    m_process->setExecutable("/bin/sleep");
    m_process->setArguments({"1000000"});
    launch();
    m_process->terminate();
    m_process->waitUntilExit();
    EXPECT_EQ(printed(), "");
}

TEST_F(ProcessTerminationTest, aChildThatDoesNotListenIsEnded)
{
    setScript("print ready\nhang");
    launch();
    EXPECT_EQ(nextPrinted(), "ready");
    m_process->terminate();
    m_process->waitUntilExit();
    EXPECT_EQ(printed(), "");
}

TEST_F(ProcessTerminationTest, aChildMayIgnoreIt)
{
    setScript("ignore-termination\nprint ready\nwait-for " + path("go") + "\nprint went on");
    launch();
    EXPECT_EQ(nextPrinted(), "ready");
    m_process->terminate();
    m_process->terminate();
    writeFile(path("go"), "");
    EXPECT_EQ(printed(), "went on");
    m_process->waitUntilExit();
}

TEST_F(ProcessTerminationTest, beforeTheLaunchItDoesNothing)
{
    setScript("print it ran");
    m_process->terminate();
    launch();
    m_process->waitUntilExit();
    EXPECT_EQ(printed(), "it ran");
}

TEST_F(ProcessTerminationTest, anotherThreadMayTerminateWhileOneWaits)
{
    setScript("on-termination " + path("terminated") + "\nprint ready\nhang");
    launch();
    std::jthread waiter([this] { m_process->waitUntilExit(); });
    EXPECT_EQ(nextPrinted(), "ready");
    m_process->terminate();
    waiter.join();
    EXPECT_EQ(contentsOf(path("terminated")), "SIGTERM");
}

class ProcessWaitTest : public ProcessTestSetup
{
};

TEST_F(ProcessWaitTest, itReturnsOnlyAfterTheExit)
{
    setScript("print ready\nwait-for " + path("go") + "\ntouch " + path("done"));
    launch();
    EXPECT_EQ(nextPrinted(), "ready");
    std::jthread release([this] { writeFile(path("go"), ""); });
    m_process->waitUntilExit();
    EXPECT_TRUE(exists(path("done")));
}

TEST_F(ProcessWaitTest, beforeTheLaunchItReturnsAtOnce)
{
    setScript("hang");
    m_process->waitUntilExit();
}

TEST_F(ProcessWaitTest, severalThreadsMayWait)
{
    setScript("print ready\nwait-for " + path("go"));
    launch();
    {
        std::vector<std::jthread> waiters;
        for (int waiter = 0; waiter < 4; ++waiter)
            waiters.emplace_back([this] { m_process->waitUntilExit(); });
        EXPECT_EQ(nextPrinted(), "ready");
        writeFile(path("go"), "");
    }
    EXPECT_EQ(printed(), "");
}

TEST_F(ProcessWaitTest, theChildIsReaped)
{
    setScript("record-pid " + path("pid"));
    launch();
    m_process->waitUntilExit();
    EXPECT_FALSE(exists("/proc/" + contentsOf(path("pid"))));
}

} // namespace tarnwell::test
