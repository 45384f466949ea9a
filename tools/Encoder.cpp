// SPDX-License-Identifier: MIT
#include "tools/Encoder.h"

#include "tools/Child.h"
#include "tools/StatusLines.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds graceAfterCancel(400);
constexpr std::size_t blockSize = 65536;

int cancelDescriptor = -1;
bool cancelSeen = false;

void writeWhole(const std::string& text)
{
    // One write for each line. Nobody may be listening; that is no reason to stop.
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = text.find('\n', begin) + 1;
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data() + begin, end - begin);
        begin = end;
    }
}

struct PipeEnds {
    int reading = -1;
    int writing = -1;
};

PipeEnds makePipe()
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return {};
    return {ends[0], ends[1]};
}

void closeEnd(int& descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

/// One piece of what is there to read; nothing at the end, which closes the descriptor.
std::string readPiece(int& descriptor)
{
    std::string piece(blockSize, '\0');
    const ssize_t count = ::read(descriptor, piece.data(), piece.size());
    piece.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    if (count == 0 || (count < 0 && errno != EINTR))
        closeEnd(descriptor);
    return piece;
}

/// Reads ffmpeg's two streams until both have ended and it has exited, and passes a wish to cancel on to it.
class Listener
{
public:
    Listener(pid_t child, int progress, int complaints)
        : m_child(child)
        , m_end(descriptorOfEnd(child))
        , m_progress(progress)
        , m_complaints(complaints)
    {
    }
    ~Listener()
    {
        closeEnd(m_progress);
        closeEnd(m_complaints);
        closeEnd(m_end);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    void listen()
    {
        while (isListening() || !hasEnded(m_child)) {
            std::array<pollfd, 4> waiting = {{{m_progress, POLLIN, 0}, {m_complaints, POLLIN, 0},
                {m_killAt ? -1 : cancelDescriptor, POLLIN, 0}, {isListening() ? -1 : m_end, POLLIN, 0}}};
            ::poll(waiting.data(), waiting.size(), patience());
            if (m_killAt && Clock::now() >= *m_killAt) {
                ::kill(m_child, SIGKILL);
                return;
            }
            if (waiting[0].revents != 0)
                writeWhole(m_progressReader.read(readPiece(m_progress)));
            if (waiting[1].revents != 0)
                writeWhole(m_complaintReader.read(readPiece(m_complaints)));
            if (!m_killAt && isCancelled())
                passOn();
        }
    }

private:
    /// An ffmpeg that has closed its streams may still be at work, and a wish to cancel must reach it.
    bool isListening() const { return m_progress >= 0 || m_complaints >= 0; }

    int patience() const
    {
        if (!isListening())
            return exitCheckInterval;
        if (!m_killAt)
            return -1;
        const auto left
            = std::chrono::duration_cast<std::chrono::milliseconds>(*m_killAt - Clock::now()).count();
        return left > 0 ? static_cast<int>(left) + 1 : 0;
    }

    void passOn()
    {
        ::kill(m_child, SIGTERM);
        m_killAt = Clock::now() + graceAfterCancel;
    }

    pid_t m_child;
    int m_end;
    int m_progress;
    int m_complaints;
    ProgressReader m_progressReader;
    ComplaintReader m_complaintReader;
    std::optional<Clock::time_point> m_killAt;
};

} // namespace

void watchForCancelling()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    cancelDescriptor = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

bool isCancelled()
{
    signalfd_siginfo info = {};
    if (::read(cancelDescriptor, &info, sizeof info) > 0)
        cancelSeen = true;
    return cancelSeen;
}

int cancellingDescriptor()
{
    return cancelDescriptor;
}

RunEnd runFfmpeg(const std::vector<std::string>& arguments, const std::string& input, int output)
{
    if (isCancelled())
        return RunEnd::Cancelled;
    PipeEnds progress = makePipe();
    PipeEnds complaints = makePipe();
    ChildPlan ffmpeg;
    ffmpeg.program = pathOfTool("ffmpeg");
    ffmpeg.arguments = arguments;
    ffmpeg.standardOutput = progress.writing;
    ffmpeg.standardError = complaints.writing;
    ffmpeg.input = input;
    ffmpeg.output = output;
    const pid_t child = startChild(ffmpeg);
    closeEnd(progress.writing);
    closeEnd(complaints.writing);
    Listener listener(child, progress.reading, complaints.reading);
    if (child < 0)
        return RunEnd::Failed;
    listener.listen();
    const int status = waitForChild(child);
    if (isCancelled())
        return RunEnd::Cancelled;
    return status == 0 ? RunEnd::Succeeded : RunEnd::Failed;
}
