// SPDX-License-Identifier: MIT
// A child in a session of its own, launched by a program that controls a terminal.
#include "tests/platform/ProcessTestSetup.h"
#include "tests/support/Files.h"

#include <csignal>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwell::test
{

class ProcessTerminalTest : public ProcessTestSetup
{
protected:
    ProcessTerminalTest()
    {
        m_process->setStandardOutput(nullptr); // the terminal
        m_process->setStandardError(m_output);
        m_process->setSession(Process::Session::Own);
    }
    ~ProcessTerminalTest() override { ::close(m_master); }

    /// Forks a session leader with a new terminal, which launches the process and exits with what
    /// `afterLaunch` returns.
    template <typename Work>
    void forkLeader(const Work& afterLaunch)
    {
        m_leader = ::forkpty(&m_master, nullptr, nullptr, nullptr);
        ASSERT_GE(m_leader, 0);
        if (m_leader == 0) {
            std::signal(SIGINT, SIG_DFL);
            std::signal(SIGTTIN, SIG_DFL);
            ::_exit(m_process->launch() ? 100 : afterLaunch());
        }
        m_output->closeWriting();
    }

    void typeIntoTerminal(const std::string& keys) const
    {
        ASSERT_EQ(::write(m_master, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    /// The leader's wait status.
    int leaderEnd() const
    {
        int status = 0;
        EXPECT_EQ(::waitpid(m_leader, &status, 0), m_leader);
        return status;
    }

    /// The exit status of the only child. A child that the terminal stops is killed, and the result is 101.
    static int exitStatusOfChild()
    {
        int status = 0;
        const pid_t child = ::waitpid(-1, &status, WUNTRACED);
        if (!WIFSTOPPED(status))
            return WIFEXITED(status) ? WEXITSTATUS(status) : 102;
        ::kill(child, SIGKILL);
        return 101;
    }

private:
    int m_master = -1;
    pid_t m_leader = -1;
};

TEST_F(ProcessTerminalTest, aChildThatReadsTheTerminalIsNotStopped)
{
    m_process->setExecutable("/bin/sh");
    m_process->setArguments({"-c", "read line && test \"$line\" = hello"});
    forkLeader(exitStatusOfChild);
    typeIntoTerminal("hello\n");
    const int end = leaderEnd();
    ASSERT_TRUE(WIFEXITED(end));
    EXPECT_EQ(WEXITSTATUS(end), 0);
}

TEST_F(ProcessTerminalTest, anInterruptFromTheTerminalDoesNotReachTheChild)
{
    setScript("error ready\nwait-for " + path("go") + "\nerror went on");
    forkLeader([] { return ::pause(); });
    EXPECT_EQ(nextPrinted(), "ready");
    typeIntoTerminal("\x03");
    const int end = leaderEnd();
    ASSERT_TRUE(WIFSIGNALED(end));
    EXPECT_EQ(WTERMSIG(end), SIGINT);
    writeFile(path("go"), "");
    EXPECT_EQ(printed(), "went on");
}

} // namespace tarnwell::test
