// SPDX-License-Identifier: MIT
#include "desktop/QuitSignals.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tarnwell
{

namespace
{

// Signal handlers can reach static variables only.
std::array<int, 2> ends = {-1, -1}; // of a pipe: reading, writing
volatile std::sig_atomic_t wasSignalled = 0;

/// Calls only functions that are safe in a signal handler.
void handleSignal(int signal)
{
    if (wasSignalled != 0) {
        std::signal(signal, SIG_DFL);
        std::raise(signal); // takes effect when this handler returns
        return;
    }
    wasSignalled = 1;
    [[maybe_unused]] const auto count = ::write(ends[1], "", 1);
}

bool isIgnored(int signal)
{
    struct sigaction action = {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

int readingEnd()
{
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        ends = {-1, -1};
    return ends[0];
}

} // namespace

QuitSignals::QuitSignals(const std::function<void()>& quit)
    : m_notifier(readingEnd(), QSocketNotifier::Read)
{
    if (ends[0] < 0)
        return; // the signals keep their default action
    QObject::connect(&m_notifier, &QSocketNotifier::activated, [this, quit] {
        m_notifier.setEnabled(false);
        quit();
    });
    struct sigaction action = {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        if (signal == SIGTERM || !isIgnored(signal))
            ::sigaction(signal, &action, nullptr);
    }
}

} // namespace tarnwell
