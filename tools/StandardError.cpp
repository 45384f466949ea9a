// SPDX-License-Identifier: MIT
#include "tools/StandardError.h"

#include "tools/StatusLines.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <poll.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

bool isRead = true; // false after a dropped line
std::string lastStatusLine; // empty before the first one
Clock::time_point lastStatusTime;

bool waitUntilWritable(int stopDescriptor)
{
    constexpr int longestWait = 1000; // milliseconds
    std::array<pollfd, 2> waiting = {{{STDERR_FILENO, POLLOUT, 0}, {stopDescriptor, POLLIN, 0}}};
    ::poll(waiting.data(), waiting.size(), isRead ? longestWait : 0);
    isRead = waiting[0].revents != 0;
    return (waiting[0].revents & POLLOUT) != 0;
}

} // namespace

void writeErrorLines(const std::string& lines, int stopDescriptor)
{
    for (std::size_t begin = 0; begin < lines.size();) {
        const auto end = std::min(lines.find('\n', begin), lines.size() - 1) + 1;
        if (lines.compare(begin, statusMark.size(), statusMark) == 0) {
            lastStatusLine = lines.substr(begin, end - begin);
            lastStatusTime = Clock::now();
        }
        if (waitUntilWritable(stopDescriptor)) {
            [[maybe_unused]] const auto written = ::write(STDERR_FILENO, lines.data() + begin, end - begin);
        }
        begin = end;
    }
}

void repeatStatusLine(int stopDescriptor)
{
    constexpr std::chrono::milliseconds longestSilence(450);
    if (!lastStatusLine.empty() && Clock::now() - lastStatusTime >= longestSilence)
        writeErrorLines(std::string(lastStatusLine), stopDescriptor);
}
