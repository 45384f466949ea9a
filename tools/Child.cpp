// SPDX-License-Identifier: MIT
#include "tools/Child.h"

#include "tools/Confinement.h"
#include "tools/StandardError.h"
#include "tools/StatusLines.h"
#include "tools/Stream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

// Missing in older headers. The numbers are the same on all architectures.
#ifndef SYS_close_range
#define SYS_close_range 436
#endif

#ifndef SYS_pidfd_open
#define SYS_pidfd_open 434
#endif

namespace
{

constexpr int cannotRun = 127;
constexpr int signalBase = 128;

// The whole environment of a tool: variables of the user must not change its language or libraries.
char searchPath[] = "PATH=/usr/bin:/bin";
char locale[] = "LC_ALL=C.UTF-8";
char* const toolEnvironment[] = {searchPath, locale, nullptr};

// How long a tool may run after the end of its output.
constexpr int longestEnd = 1000; // milliseconds

void reportThatItCannotRun(const std::string& program)
{
    const std::string reason = std::strerror(errno);
    writeErrorLines("tarnwell: " + withoutStatusMarks(program) + " cannot be run: " + reason
        + ". Please install the package ffmpeg.\n");
}

/// Duplicates `descriptor`, which is not a standard descriptor, to the standard descriptor `stream`. -1 means
/// the null device.
void redirect(int descriptor, int stream)
{
    const int source = descriptor >= 0 ? descriptor : ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(source, stream);
}

void closeOnExec(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

/// The tool must not inherit descriptors that this process has inherited.
void closeOthersOnExec()
{
    constexpr unsigned int onExec = 4; // CLOSE_RANGE_CLOEXEC
    if (::syscall(SYS_close_range, STDERR_FILENO + 1, ~0U, onExec) == 0)
        return;
    // Kernels before 5.11 have no CLOSE_RANGE_CLOEXEC.
    DIR* listing = ::opendir("/proc/self/fd");
    while (const dirent* entry = listing != nullptr ? ::readdir(listing) : nullptr) {
        if (const int descriptor = std::atoi(entry->d_name); descriptor > STDERR_FILENO)
            closeOnExec(descriptor);
    }
    if (listing != nullptr)
        ::closedir(listing);
}

void resetSignals()
{
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL);
}

[[noreturn]] void execTool(const ChildPlan& plan, char* const arguments[], pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) // the parent ended before the call of prctl
        ::_exit(cannotRun);
    resetSignals();
    ::setsid(); // the terminal sends signals to the parent only
    const int ownError = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    redirect(-1, STDIN_FILENO);
    redirect(plan.standardOutput, STDOUT_FILENO);
    redirect(plan.standardError, STDERR_FILENO);
    closeOthersOnExec();
    if (plan.output >= 0)
        ::fcntl(plan.output, F_SETFD, 0);
    // Refers to the open file, even if another file replaces it at its path.
    const std::string input = plan.input >= 0 ? "/proc/self/fd/" + std::to_string(plan.input) : "";
    confine({plan.program, input, plan.output, plan.isProbe});
    ::execve(plan.program.c_str(), arguments, toolEnvironment);
    ::dup2(ownError, STDERR_FILENO);
    reportThatItCannotRun(plan.program);
    ::_exit(cannotRun);
}

/// Kills the child. Unless `isStopped`, waits one second for its exit first.
void endChild(pid_t child, bool isStopped)
{
    const int end = openExitDescriptor(child);
    for (int waited = 0; !isStopped && waited < longestEnd && !hasEnded(child); waited += exitCheckInterval) {
        pollfd waiting = {end, POLLIN, 0};
        ::poll(&waiting, 1, exitCheckInterval);
    }
    ::kill(child, SIGKILL);
    ::close(end);
}

int millisecondsUntil(std::chrono::steady_clock::time_point time)
{
    const auto left = time - std::chrono::steady_clock::now();
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return static_cast<int>(std::max<std::int64_t>(count, 0));
}

} // namespace

pid_t startChild(const ChildPlan& plan)
{
    std::vector<std::string> texts = {plan.program};
    texts.insert(texts.end(), plan.arguments.begin(), plan.arguments.end());
    std::vector<char*> pointers;
    for (auto& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0)
        execTool(plan, pointers.data(), parent);
    return child;
}

void openStandardDescriptors()
{
    // open returns the lowest free number: the loop ends when 0, 1 and 2 are in use.
    int descriptor = ::open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor >= 0)
        ::close(descriptor);
}

bool hasEnded(pid_t child)
{
    siginfo_t exit = {};
    return ::waitid(P_PID, static_cast<id_t>(child), &exit, WEXITED | WNOWAIT | WNOHANG) != 0
        || exit.si_pid != 0;
}

int openExitDescriptor(pid_t child)
{
    return static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
}

int waitForChild(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return cannotRun;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

std::string outputOfChild(ChildPlan plan, int& status, int stopDescriptor, std::chrono::milliseconds longest)
{
    Stream output;
    Stream errors;
    status = cannotRun;
    if (!output.isOpen() || !errors.isOpen())
        return {};
    plan.standardOutput = output.writing();
    plan.standardError = plan.onErrors ? errors.writing() : -1;
    const pid_t child = startChild(plan);
    output.closeWriting();
    errors.closeWriting();
    if (child < 0)
        return {};
    const auto end = std::chrono::steady_clock::now() + longest;
    ErrorMessageReader reader;
    const auto report = [&plan](const std::string& lines) {
        if (!lines.empty())
            plan.onErrors(lines);
    };
    std::string text;
    bool isStopped = false;
    while (output.isOpen() && !isStopped) {
        std::array<pollfd, 3> waiting
            = {{{output.reading(), POLLIN, 0}, {errors.reading(), POLLIN, 0}, {stopDescriptor, POLLIN, 0}}};
        const int left = millisecondsUntil(end);
        ::poll(waiting.data(), waiting.size(), left);
        isStopped = waiting[2].revents != 0 || left == 0 || text.size() > mostOutput;
        if (waiting[0].revents != 0)
            text += output.read();
        if (waiting[1].revents != 0)
            report(reader.read(errors.read()));
    }
    endChild(child, isStopped);
    const int exit = waitForChild(child);
    while (errors.hasMore())
        report(reader.read(errors.read()));
    report(reader.rest());
    status = exit == 0 && !output.isWhole() ? cannotRun : exit;
    return text;
}

std::string pathOfTool(const std::string& name)
{
    constexpr std::size_t longestPath = 4096;
    std::string self(longestPath, '\0');
    const ssize_t length = ::readlink("/proc/self/exe", self.data(), self.size());
    if (length <= 0)
        return TARNWELL_FFMPEG_FOLDER "/" + name;
    self.resize(static_cast<std::size_t>(length));
    const std::string beside = self.substr(0, self.rfind('/') + 1) + name;
    return ::access(beside.c_str(), X_OK) == 0 ? beside : TARNWELL_FFMPEG_FOLDER "/" + name;
}
