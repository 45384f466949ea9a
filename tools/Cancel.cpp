// SPDX-License-Identifier: MIT
#include "tools/Cancel.h"

#include <csignal>
#include <initializer_list>
#include <sys/signalfd.h>
#include <unistd.h>

namespace
{

int cancelSignals = -1;
bool cancelSeen = false;

/// Whether the caller has set the signal to be ignored, for example with nohup.
bool isIgnored(int signal)
{
    struct sigaction action = {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

void handleCancelSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        if (signal == SIGTERM || !isIgnored(signal))
            sigaddset(&signals, signal);
    }
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    cancelSignals = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

bool isCancelled()
{
    signalfd_siginfo info = {};
    if (::read(cancelSignals, &info, sizeof info) > 0)
        cancelSeen = true;
    return cancelSeen;
}

int cancelDescriptor()
{
    return cancelSignals;
}
