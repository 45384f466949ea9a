// SPDX-License-Identifier: MIT
#include "tests/tools/ToolProcess.h"

#include "tests/support/Files.h"
#include "tests/support/TimeLimit.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

constexpr int signalBase = 128;
constexpr int cannotBeRun = 127;

// A socket pair that preserves the boundaries of writes.
std::pair<int, int> messageSockets()
{
    int ends[2] = {-1, -1};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
    const timeval patience = {longestWait.count(), 0};
    ::setsockopt(ends[0], SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    return {ends[0], ends[1]};
}

std::pair<int, int> makePipe()
{
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    return {ends[0], ends[1]};
}

std::string fromHexadecimal(const std::string& digits)
{
    std::string bytes;
    for (std::size_t place = 0; place + 1 < digits.size(); place += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(place, 2), nullptr, 16));
    return bytes;
}

/// Blocks the signal, for this thread and the processes that it starts, during its lifetime. 0 means none.
class SignalBlock
{
public:
    explicit SignalBlock(int signal)
    {
        sigset_t signals;
        sigemptyset(&signals);
        if (signal != 0)
            sigaddset(&signals, signal);
        ::sigprocmask(SIG_BLOCK, &signals, &m_before);
    }
    ~SignalBlock() { ::sigprocmask(SIG_SETMASK, &m_before, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

private:
    sigset_t m_before = {};
};

} // namespace

ToolProcess::ToolProcess(
    const std::string& program, const std::vector<std::string>& arguments, const ToolSetup& setup)
    : m_outputFile(::memfd_create("output", MFD_CLOEXEC))
{
    int errors = -1;
    if (setup.errors == ToolSetup::ErrorStream::Heard)
        std::tie(m_errorSocket, errors) = messageSockets();
    else if (setup.errors != ToolSetup::ErrorStream::Closed)
        std::tie(m_unreadPipe, errors) = makePipe();
    if (setup.errors == ToolSetup::ErrorStream::Unread) {
        ::close(m_unreadPipe);
        m_unreadPipe = -1;
    }
    std::vector<std::string> words = {program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const SignalBlock block(setup.blocked);
    m_process = ::fork();
    if (m_process == 0)
        become(words, setup, errors);
    EXPECT_GT(m_process, 0);
    if (errors >= 0)
        ::close(errors);
}

ToolProcess::~ToolProcess()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_outputFile);
    if (m_errorSocket >= 0)
        ::close(m_errorSocket);
    if (m_unreadPipe >= 0)
        ::close(m_unreadPipe);
}

void ToolProcess::become(const std::vector<std::string>& words, const ToolSetup& setup, int errors) const
{
    std::vector<char*> pointers;
    for (const auto& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    for (const auto& variable : setup.variables)
        ::putenv(const_cast<char*>(variable.c_str()));
    if (setup.ignored != 0)
        std::signal(setup.ignored, SIG_IGN);
    const rlimit limit = {setup.largestFile, setup.largestFile};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::dup2(::open("/dev/zero", O_RDONLY | O_CLOEXEC), STDIN_FILENO); // has no end of file, like a terminal
    ::dup2(m_outputFile, STDOUT_FILENO);
    if (errors >= 0)
        ::dup2(errors, STDERR_FILENO);
    else
        ::close(STDERR_FILENO);
    for (const int descriptor : setup.closed)
        ::close(descriptor);
    for (const auto call : setup.refused) {
        if (!refuse(call))
            ::_exit(cannotBeRun);
    }
    ::execv(pointers[0], pointers.data());
    ::_exit(cannotBeRun);
}

void ToolProcess::signal(int number) const
{
    EXPECT_EQ(::kill(m_process, number), 0);
}

bool ToolProcess::hear()
{
    if (m_errorSocket < 0)
        return false;
    std::string message(65536, '\0');
    const ssize_t count = ::recv(m_errorSocket, message.data(), message.size(), 0);
    if (count < 0) {
        ADD_FAILURE() << "it hangs: nothing comes on its standard error, and no end";
        ::kill(m_process, SIGKILL);
    }
    if (count <= 0)
        return false;
    m_errors.push_back(message.substr(0, static_cast<std::size_t>(count)));
    return true;
}

int ToolProcess::wait()
{
    while (hear()) { }
    int status = 0;
    const bool hasEnded = waitFor([&] { return ::waitpid(m_process, &status, WNOHANG) != 0; });
    EXPECT_TRUE(hasEnded) << "it does not end";
    if (!hasEnded)
        return -1;
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

std::string ToolProcess::output() const
{
    struct stat status = {};
    ::fstat(m_outputFile, &status);
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const auto count
            = ::pread(m_outputFile, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
        if (count <= 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return bytes;
}

std::string ToolProcess::errorText() const
{
    std::string text;
    for (const auto& message : m_errors)
        text += message;
    return text;
}

bool ToolProcess::isErrorPipeFull() const
{
    constexpr int pageSize = 4096; // a page of the pipe holds one such line
    constexpr int lineSize = 3000;
    int unread = 0;
    const int capacity = ::fcntl(m_unreadPipe, F_GETPIPE_SZ);
    return ::ioctl(m_unreadPipe, FIONREAD, &unread) == 0 && unread >= capacity / pageSize * lineSize;
}

std::string ToolProcess::waitForError(const std::string& beginning)
{
    std::vector<std::string> lines = said(beginning);
    while (lines.empty() && hear())
        lines = said(beginning);
    EXPECT_FALSE(lines.empty()) << "no line begins with: " << beginning << "\nbut: " << errorText();
    return lines.empty() ? std::string() : lines.front();
}

std::vector<std::string> ToolProcess::said(const std::string& beginning) const
{
    std::vector<std::string> rests;
    std::istringstream lines(errorText());
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(beginning))
            rests.push_back(line.substr(beginning.size()));
    }
    return rests;
}

std::vector<std::string> ToolProcess::saidInHex(const std::string& beginning) const
{
    std::vector<std::string> words;
    for (const auto& digits : said(beginning))
        words.push_back(fromHexadecimal(digits));
    return words;
}

testing::AssertionResult waitFor(const std::function<bool()>& condition)
{
    constexpr std::chrono::milliseconds interval(2);
    const auto deadline = std::chrono::steady_clock::now() + longestWait;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return testing::AssertionFailure()
                << "the condition did not hold within " << longestWait.count() << " s; ";
        std::this_thread::sleep_for(interval);
    }
    return testing::AssertionSuccess();
}

bool isRunning(pid_t process)
{
    const std::string status = contentsOf("/proc/" + std::to_string(process) + "/stat");
    const auto nameEnd = status.rfind(')');
    return nameEnd != std::string::npos && status.substr(nameEnd + 2, 1) != "Z";
}

void waitUntilGone(pid_t process)
{
    EXPECT_TRUE(waitFor([process] { return !isRunning(process); })) << process << " still runs";
}

int runTool(const std::string& program, const std::vector<std::string>& arguments)
{
    ToolProcess process(program, arguments);
    return process.wait();
}

} // namespace tarnwell::test
