// SPDX-License-Identifier: MIT
#include "platform/Diagnostics.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <mutex>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace tarnwell
{

namespace
{

/// Whether a piece that a pipe takes in one go can be written without waiting for somebody to read.
bool canTakePiece()
{
    pollfd output = {STDOUT_FILENO, POLLOUT, 0};
    return ::poll(&output, 1, 0) > 0 && (output.revents & POLLOUT) != 0;
}

} // namespace

void printLine(std::string_view line)
{
    static std::mutex oneLineAtATime;
    const std::lock_guard lock(oneLineAtATime);
    std::string text(line);
    text += '\n';
    for (std::size_t done = 0; done < text.size() && canTakePiece();) {
        const std::size_t piece = std::min<std::size_t>(text.size() - done, PIPE_BUF);
        const ssize_t count = ::write(STDOUT_FILENO, text.data() + done, piece);
        if (count < 0 && errno != EINTR)
            return;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

} // namespace tarnwell
