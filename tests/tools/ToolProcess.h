// SPDX-License-Identifier: MIT
#pragma once

#include "tests/tools/RefusedCall.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/types.h>
#include <vector>

namespace tarnwell::test
{

/// The state in which a tool is started.
struct ToolSetup {
    enum class ErrorStream {
        Heard,
        Closed,
        Unread, // a pipe without a reader
        NotListened // a pipe whose reader does not read
    };

    ErrorStream errors = ErrorStream::Heard;
    std::vector<int> closed = {}; // descriptors
    int ignored = 0; // a signal; 0 for none
    int blocked = 0; // a signal; 0 for none
    rlim_t largestFile = RLIM_INFINITY; // bytes
    std::vector<std::string> variables = {}; // added to the environment
    std::vector<RefusedCall> refused = {}; // system calls that fail
};

/// A tool as a child process. Records each write to its standard error separately.
class ToolProcess
{
public:
    ToolProcess(
        const std::string& program, const std::vector<std::string>& arguments, const ToolSetup& setup = {});
    /// Kills the tool if it still runs.
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    pid_t processId() const { return m_process; }
    void signal(int number) const;

    /// Waits for the end of the tool. Returns its exit status, or 128 plus the number of the signal. Returns
    /// -1 and fails the test after the longest wait.
    int wait();

    /// The standard output of the tool so far.
    std::string output() const;

    /// The standard error of the tool, one element per write.
    const std::vector<std::string>& errors() const { return m_errors; }
    std::string errorText() const;

    /// Waits for a line with that beginning and returns its rest. Fails the test if the tool ends first.
    std::string waitForError(const std::string& beginning);

    /// Whether the pipe of ErrorStream::NotListened accepts no other line of 3000 bytes.
    bool isErrorPipeFull() const;

    /// The rest of each line of the fake tool with that beginning; see FakeTools.h.
    std::vector<std::string> said(const std::string& beginning) const;
    /// The same for lines in hexadecimal digits, decoded.
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

/// Blocks until the condition holds; fails after the longest wait.
testing::AssertionResult waitFor(const std::function<bool()>& condition);

/// False for a process that has ended, even if its parent has not waited for it.
bool isRunning(pid_t process);

/// Blocks until the process has ended. Fails the test after the longest wait.
void waitUntilGone(pid_t process);

/// Runs the program to its end; returns the value of ToolProcess::wait.
int runTool(const std::string& program, const std::vector<std::string>& arguments);

} // namespace tarnwell::test
