// SPDX-License-Identifier: MIT
#pragma once

#include "tests/tools/RefusedCall.h"

#include <string>
#include <sys/resource.h>
#include <sys/types.h>
#include <vector>

namespace tarnwell::test
{

/// How a tool is started, besides its arguments.
struct ToolSetup {
    enum class ErrorStream {
        Heard,
        Closed,
        Unread, // a pipe whose reader has gone
        NotListened // a pipe whose reader is there and does not read
    };

    ErrorStream errors = ErrorStream::Heard;
    std::vector<int> closed = {}; // descriptors that it finds closed
    int ignored = 0; // a signal
    int blocked = 0; // another
    rlim_t largestFile = RLIM_INFINITY;
    std::vector<std::string> variables = {}; // more of the environment
    std::vector<RefusedCall> refused = {}; // what its system cannot do
};

/// A tool as a child process. Each write to its standard error is kept apart.
class ToolProcess
{
public:
    ToolProcess(
        const std::string& program, const std::vector<std::string>& arguments, const ToolSetup& setup = {});
    /// Kills it where it still runs.
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    pid_t processId() const { return m_process; }
    void signal(int number) const;

    /// Waits for its end: the exit status, or 128 and the signal's number. -1 where it does not come; that
    /// fails the test.
    int wait();

    /// What was printed on standard output until now.
    std::string output() const;

    /// All that was written to standard error until now, one element a write.
    const std::vector<std::string>& errors() const { return m_errors; }
    std::string errorText() const;

    /// Waits for a line that begins so; what follows in it. Fails the test where the tool ends before.
    std::string waitForError(const std::string& beginning);

    /// What the fake tool said in lines that begin so, each without the beginning; see FakeTools.h.
    std::vector<std::string> said(const std::string& beginning) const;
    /// The same for words in hexadecimal digits.
    std::vector<std::string> saidInHex(const std::string& beginning) const;

private:
    void become(const std::vector<std::string>& words, const ToolSetup& setup, int errors) const;
    bool hear();

    pid_t m_process = -1;
    int m_outputFile = -1;
    int m_errorSocket = -1;
    int m_unreadPipe = -1;
    std::vector<std::string> m_errors;
};

/// Whether the process runs; one that has ended and that nobody has waited for does not.
bool isRunning(pid_t process);

/// Waits until it does not run any more. Fails the test where that does not come.
void waitUntilGone(pid_t process);

/// Runs it to its end; the status as of ToolProcess::wait.
int runTool(const std::string& program, const std::vector<std::string>& arguments);

} // namespace tarnwell::test
