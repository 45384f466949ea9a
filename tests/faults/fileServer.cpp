// SPDX-License-Identifier: MIT
// An LD_PRELOAD library that makes files with a hidden name behave like those on a GVfs mount of a file
// server: after the first pread the file accepts neither changes nor another size. fsync is refused. Unnamed
// files do not exist. With TARNWELL_FULL_SERVER every write to such a file fails because the disk is full.
// With TARNWELL_SLOW_SERVER every write takes at least half a second.
#include "tests/faults/Preloaded.h"

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits.h>
#include <string>
#include <sys/types.h>
#include <unistd.h>

namespace
{

bool isOnServer(int file)
{
    char path[PATH_MAX] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    return ::readlink(link.c_str(), path, sizeof path - 1) > 0
        && std::strstr(path, "/.tarnwell-unfinished-") != nullptr;
}

bool wasRead = false;

bool refusesChanges(int file)
{
    return wasRead && isOnServer(file);
}

bool isFull(int file)
{
    return std::getenv("TARNWELL_FULL_SERVER") != nullptr && isOnServer(file);
}

void waitIfSlow(int file)
{
    constexpr useconds_t halfASecond = 500000;
    if (std::getenv("TARNWELL_SLOW_SERVER") != nullptr && isOnServer(file))
        ::usleep(halfASecond);
}

bool isUnnamed(int flags)
{
    return (flags & O_TMPFILE) == O_TMPFILE;
}

} // namespace

extern "C" {

ssize_t pread(int file, void* bytes, size_t count, off_t place)
{
    wasRead = wasRead || isOnServer(file);
    static const auto really = real<decltype(&::pread)>("pread");
    return really(file, bytes, count, place);
}

ssize_t pread64(int file, void* bytes, size_t count, off64_t place)
{
    wasRead = wasRead || isOnServer(file);
    static const auto really = real<decltype(&::pread64)>("pread64");
    return really(file, bytes, count, place);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t place)
{
    if (refusesChanges(file))
        return failing(EOPNOTSUPP);
    static const auto really = real<decltype(&::pwrite)>("pwrite");
    return really(file, bytes, count, place);
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t place)
{
    if (refusesChanges(file))
        return failing(EOPNOTSUPP);
    static const auto really = real<decltype(&::pwrite64)>("pwrite64");
    return really(file, bytes, count, place);
}

int ftruncate(int file, off_t size)
{
    if (refusesChanges(file))
        return failing(EOPNOTSUPP);
    static const auto really = real<decltype(&::ftruncate)>("ftruncate");
    return really(file, size);
}

int ftruncate64(int file, off64_t size) noexcept
{
    if (refusesChanges(file))
        return failing(EOPNOTSUPP);
    static const auto really = real<decltype(&::ftruncate64)>("ftruncate64");
    return really(file, size);
}

ssize_t write(int file, const void* bytes, size_t count)
{
    if (isFull(file))
        return failing(ENOSPC);
    waitIfSlow(file);
    static const auto really = real<decltype(&::write)>("write");
    return really(file, bytes, count);
}

int fsync(int file)
{
    if (isOnServer(file))
        return failing(EINVAL);
    static const auto really = real<decltype(&::fsync)>("fsync");
    return really(file);
}

int openat(int folder, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, mode_t);
    va_end(rest);
    if (isUnnamed(flags))
        return failing(EOPNOTSUPP);
    static const auto really = real<decltype(&::openat)>("openat");
    return really(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const auto mode = va_arg(rest, mode_t);
    va_end(rest);
    if (isUnnamed(flags))
        return failing(EOPNOTSUPP);
    static const auto really = real<decltype(&::openat64)>("openat64");
    return really(folder, path, flags, mode);
}
}
