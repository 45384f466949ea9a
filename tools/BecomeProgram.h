// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

/// Becomes the program of FFmpeg at `path` with this program's own arguments; only a failure returns, as an exit
/// status. Standard input is the null device from then on: ffmpeg takes what stands there for commands.
inline int becomeProgram(const char* path, char* arguments[])
{
    constexpr int notFound = 127;
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing >= 0)
        ::dup2(nothing, STDIN_FILENO);
    ::execv(path, arguments);
    std::fprintf(stderr, "tarnwell: %s cannot be run: %s. Please install the package ffmpeg.\n", path,
        std::strerror(errno));
    return notFound;
}
