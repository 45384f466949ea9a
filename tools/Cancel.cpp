// SPDX-License-Identifier: MIT
#include "tools/Cancel.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>
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

/// The token of the caller; -1 if it passes none. Another open file could have the number in the variable.
int tokenDescriptor()
{
    const char* number = std::getenv("TARNWELL_COMMIT_TOKEN");
    if (number == nullptr)
        return -1;
    const int descriptor = std::atoi(number);
    std::array<char, 64> target = {};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    const bool isEvent = length > 0
        && std::string_view(target.data(), static_cast<std::size_t>(length)) == "anon_inode:[eventfd]";
    return isEvent ? descriptor : -1;
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

bool commit()
{
    if (isCancelled())
        return false;
    std::uint64_t token = 0;
    const int descriptor = tokenDescriptor();
    cancelSeen = descriptor >= 0 && ::read(descriptor, &token, sizeof token) < 0 && errno == EAGAIN;
    return !cancelSeen;
}

int cancelDescriptor()
{
    return cancelSignals;
}
