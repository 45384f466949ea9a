// SPDX-License-Identifier: MIT
#include "tools/Encoder.h"

#include "tools/Child.h"
#include "tools/EarlyWriteback.h"
#include "tools/InputFile.h"
#include "tools/StandardError.h"
#include "tools/StatusLines.h"
#include "tools/Stream.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds graceAfterCancel(400);

/// Reads ffmpeg's two streams until both have ended and ffmpeg has exited. Forwards a cancel to it.
class RunMonitor
{
public:
    RunMonitor(pid_t child, Stream& progress, Stream& errors, int output)
        : m_child(child)
        , m_exit(openExitDescriptor(child))
        , m_progress(progress)
        , m_errors(errors)
        , m_writeback(output)
    {
    }
    ~RunMonitor() { ::close(m_exit); }
    RunMonitor(const RunMonitor&) = delete;
    RunMonitor& operator=(const RunMonitor&) = delete;

    void waitForEnd()
    {
        while (hasOpenStreams() || !hasEnded(m_child)) {
            std::array<pollfd, 4> waiting = {{{m_progress.reading(), POLLIN, 0},
                {m_errors.reading(), POLLIN, 0}, {m_killAt ? -1 : cancelDescriptor(), POLLIN, 0},
                {hasOpenStreams() ? -1 : m_exit, POLLIN, 0}}};
            ::poll(waiting.data(), waiting.size(), timeout());
            m_writeback.advanceToEnd();
            if (m_killAt && Clock::now() >= *m_killAt) {
                ::kill(m_child, SIGKILL);
                break;
            }
            // Some ffmpeg versions write slightly fewer than two status lines per second.
            if (waiting[0].revents != 0)
                writeErrorLines(m_progressReader.read(m_progress.read()), cancelDescriptor());
            else if (m_progress.isOpen())
                repeatStatusLine(cancelDescriptor());
            if (waiting[1].revents != 0)
                writeErrorMessages(m_errorReader.read(m_errors.read()));
            if (!m_killAt && isCancelled())
                forwardCancel();
        }
        writeErrorMessages(m_errorReader.rest());
    }

    /// Writes the output to the disk, so that the final fsync, which a cancel does not end, takes little
    /// time.
    void finishWriteback()
    {
        m_writeback.finish([] {
            repeatStatusLine(cancelDescriptor());
            return !isCancelled();
        });
    }

    /// Whether ffmpeg has written an error message.
    bool hasErrorMessage() const { return m_hasErrorMessage; }

    /// Whether a message of ffmpeg names a read or write error.
    bool hasNamedReadError() const { return m_hasNamedReadError; }

private:
    /// ffmpeg can continue after it has closed its streams; a cancel must still reach it.
    bool hasOpenStreams() const { return m_progress.isOpen() || m_errors.isOpen(); }

    void writeErrorMessages(const std::string& lines)
    {
        m_hasErrorMessage = m_hasErrorMessage || !lines.empty();
        m_hasNamedReadError = m_hasNamedReadError || namesReadError(lines);
        writeErrorLines(lines, cancelDescriptor());
    }

    int timeout() const
    {
        if (m_killAt)
            return millisecondsUntil(*m_killAt);
        if (!hasOpenStreams())
            return exitCheckInterval;
        return EarlyWriteback::interval;
    }

    static int millisecondsUntil(Clock::time_point time)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now()).count();
        return left > 0 ? static_cast<int>(left) : 0;
    }

    void forwardCancel()
    {
        ::kill(m_child, SIGTERM);
        m_killAt = Clock::now() + graceAfterCancel;
    }

    pid_t m_child;
    int m_exit;
    Stream& m_progress;
    Stream& m_errors;
    EarlyWriteback m_writeback;
    ProgressReader m_progressReader;
    ErrorMessageReader m_errorReader;
    bool m_hasErrorMessage = false;
    bool m_hasNamedReadError = false;
    std::optional<Clock::time_point> m_killAt;
};

/// Succeeded if the input can be read to its end and has not changed.
RunEnd checkInput(const InputFile& input, const RunMonitor& monitor)
{
    if (monitor.hasErrorMessage()) {
        const auto end = input.readToEnd([] {
            repeatStatusLine(cancelDescriptor());
            return !isCancelled();
        });
        if (end == InputFile::ReadEnd::Stopped)
            return RunEnd::Cancelled;
        if (end == InputFile::ReadEnd::Failed) {
            const std::string reason = std::strerror(errno);
            writeErrorLines(
                "tarnwell: the input cannot be read to its end: " + reason + "\n", cancelDescriptor());
            return RunEnd::InputFailed;
        }
    }
    if (input.isUnchanged())
        return RunEnd::Succeeded;
    writeErrorLines("tarnwell: the input was changed meanwhile\n", cancelDescriptor());
    return RunEnd::InputFailed;
}

struct Run {
    RunEnd end = RunEnd::Failed;
    bool hasNamedReadError = false;
};

Run runOnce(const std::vector<std::string>& arguments, const InputFile& input, int output)
{
    if (isCancelled())
        return {RunEnd::Cancelled};
    Stream progress;
    Stream errors;
    ChildPlan ffmpeg;
    ffmpeg.program = pathOfTool("ffmpeg");
    ffmpeg.arguments = arguments;
    ffmpeg.standardOutput = progress.writing();
    ffmpeg.standardError = errors.writing();
    ffmpeg.input = input.descriptor();
    ffmpeg.output = output;
    const pid_t child = startChild(ffmpeg);
    progress.closeWriting();
    errors.closeWriting();
    if (child < 0)
        return {RunEnd::Failed};
    RunMonitor monitor(child, progress, errors, output);
    monitor.waitForEnd();
    const int status = waitForChild(child);
    if (status == 0)
        monitor.finishWriteback();
    if (isCancelled())
        return {RunEnd::Cancelled};
    const bool hasNamedReadError = monitor.hasNamedReadError();
    if (status != 0 && !hasNamedReadError)
        return {RunEnd::Failed};
    const RunEnd inputEnd = checkInput(input, monitor);
    if (inputEnd != RunEnd::Succeeded)
        return {inputEnd};
    return {status == 0 ? RunEnd::Succeeded : RunEnd::Failed, hasNamedReadError};
}

} // namespace

RunEnd runFfmpeg(const std::vector<std::string>& arguments, const InputFile& input, int output)
{
    const Run first = runOnce(arguments, input, output);
    if (!first.hasNamedReadError)
        return first.end;
    // The input can be read now. If the error was temporary, this output ends at its position. If ffmpeg
    // reports damaged data with the same text, the second run reports it again.
    writeErrorLines("tarnwell: ffmpeg runs again after a read error\n", cancelDescriptor());
    return runOnce(arguments, input, output).end;
}
