// SPDX-License-Identifier: MIT
#include "tests/support/TimeLimit.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

// A signal handler cannot safely read a std::string that another thread may change.
std::array<char, 512> lastLine;
std::size_t lastLineSize = 0;

extern "C" void endProcess(int signal)
{
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, lastLine.data(), lastLineSize);
    std::signal(signal, SIG_DFL);
    std::raise(signal); // delivered when this handler returns
}

} // namespace

void startTimeLimit(std::chrono::seconds limit, const std::string& message)
{
    stopTimeLimit();
    lastLineSize = std::min(message.size(), lastLine.size() - 1);
    std::copy_n(message.begin(), lastLineSize, lastLine.begin());
    lastLine[lastLineSize++] = '\n';
    std::signal(SIGALRM, endProcess);
    ::alarm(static_cast<unsigned int>(limit.count()));
}

void stopTimeLimit()
{
    ::alarm(0);
}

} // namespace tarnwell::test
