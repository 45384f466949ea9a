// SPDX-License-Identifier: MIT
#include "platform/StandardStreams.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tarnwell
{

void prepareStandardStreams()
{
    // open returns the lowest free number.
    int descriptor = ::open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor >= 0)
        ::close(descriptor);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);
}

} // namespace tarnwell
