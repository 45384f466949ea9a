// SPDX-License-Identifier: MIT
#include "platform/Diagnostics.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace tarnwell
{

namespace
{

using namespace std::chrono_literals;

constexpr auto callerWaitLimit = 100ms;
constexpr auto exitWaitPerLine = 2s;
constexpr auto exitWaitInAll = 10s;
constexpr std::size_t queueCapacity = std::size_t(16) << 20U; // bytes

// A regular file has no reader that could hold up a write.
bool isRegularFile(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

// Blocks until all bytes are written or an error occurs; returns the number of bytes written.
std::size_t writeBytes(int descriptor, std::string_view bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno == EAGAIN) {
            // Another process may set O_NONBLOCK: the flag belongs to the shared file description.
            pollfd output = {descriptor, POLLOUT, 0};
            ::poll(&output, 1, -1);
        } else if (errno != EINTR) {
            break;
        }
    }
    return done;
}

/// Standard output as a sequence of whole lines. Not thread-safe.
class LineOutput
{
public:
    /// `line` includes its line feed. Blocks for as long as the reader of the output does not read.
    void write(const std::string& line)
    {
        m_cutLine.erase(0, writeBytes(STDOUT_FILENO, m_cutLine));
        if (!m_cutLine.empty())
            return;
        const std::size_t done = writeBytes(STDOUT_FILENO, line);
        if (done > 0)
            m_cutLine = line.substr(done);
    }

private:
    std::string m_cutLine; // the rest of a line that an error interrupted, such as a full disk
};

/// The queue of printLine and its writer thread.
class LineQueue
{
public:
    void print(std::string line)
    {
        std::unique_lock lock(m_mutex);
        if (m_written == m_submitted && isRegularFile(STDOUT_FILENO)) {
            m_output.write(line);
            return;
        }
        if (m_queuedBytes + line.size() > queueCapacity || !startThread())
            return;
        m_queuedBytes += line.size();
        m_lines.push_back(std::move(line));
        const auto number = ++m_submitted;
        m_lineAdded.notify_one();
        if (!m_isBehind)
            m_isBehind = !m_lineWritten.wait_for(lock, callerWaitLimit, [&] { return m_written >= number; });
    }

    /// Blocks until the lines submitted so far are written or a time limit of the process's end is reached.
    void flush()
    {
        std::unique_lock lock(m_mutex);
        const auto last = m_submitted;
        const auto deadline = std::chrono::steady_clock::now() + exitWaitInAll;
        while (m_written < last) {
            const auto limit = std::min(std::chrono::steady_clock::now() + exitWaitPerLine, deadline);
            if (!m_lineWritten.wait_until(
                    lock, limit, [this, before = m_written] { return m_written != before; }))
                return;
        }
    }

private:
    bool startThread();

    [[noreturn]] void writeLines()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_lineAdded.wait(lock, [this] { return !m_lines.empty(); });
            const std::string line = std::move(m_lines.front());
            m_lines.pop_front();
            lock.unlock();
            m_output.write(line);
            lock.lock();
            m_queuedBytes -= line.size();
            ++m_written;
            m_isBehind = m_isBehind && !m_lines.empty();
            m_lineWritten.notify_all();
        }
    }

    LineOutput m_output; // used by the writer thread while lines are queued, else by the holder of m_mutex
    std::mutex m_mutex;
    std::condition_variable m_lineAdded;
    std::condition_variable m_lineWritten;
    std::deque<std::string> m_lines;
    std::size_t m_queuedBytes = 0; // includes the line being written
    std::uint64_t m_submitted = 0;
    std::uint64_t m_written = 0; // includes lines that the output refused
    bool m_isBehind = false; // a caller has waited in vain, and the queue has not been empty since
    bool m_isThreadRunning = false;
};

// Never destroyed: the writer thread uses it until the process ends.
LineQueue& lineQueue()
{
    static LineQueue& queue = *new LineQueue;
    return queue;
}

void flushLines()
{
    lineQueue().flush();
}

// Returns false if the system cannot start a thread; the line is dropped, the next one tries again.
bool LineQueue::startThread()
{
    if (m_isThreadRunning)
        return true;
    try {
        std::thread([this] { writeLines(); }).detach();
    } catch (const std::system_error&) {
        return false;
    }
    std::atexit(flushLines);
    std::at_quick_exit(flushLines);
    m_isThreadRunning = true;
    return true;
}

} // namespace

void printLine(std::string_view line)
{
    lineQueue().print(std::string(line).append("\n"));
}

} // namespace tarnwell
