// SPDX-License-Identifier: MIT
// An LD_PRELOAD library that makes folders behave like one of the document portal: only the name in
// TARNWELL_GRANTED is visible to other programs. With TARNWELL_NO_RENAME_FLAGS the file system below has no
// renameat2 with flags. With TARNWELL_MOUNTS that file is read instead of /proc/self/mountinfo.
#include "tests/faults/Preloaded.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace
{

bool isGranted(const char* name)
{
    const char* granted = std::getenv("TARNWELL_GRANTED");
    return granted != nullptr && std::strcmp(name, granted) == 0;
}

int errorOfOpening(int flags)
{
    return (flags & O_TMPFILE) == O_TMPFILE ? EOPNOTSUPP : 0;
}

const char* replacedPath(const char* path)
{
    const char* mounts = std::getenv("TARNWELL_MOUNTS");
    return mounts != nullptr && std::strcmp(path, "/proc/self/mountinfo") == 0 ? mounts : path;
}

mode_t modeIn(va_list arguments)
{
    return va_arg(arguments, mode_t);
}

constexpr int fuse = 0x65735546; // see statfs(2)

} // namespace

extern "C" {

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned int flags)
{
    if (flags != 0 && std::getenv("TARNWELL_NO_RENAME_FLAGS") != nullptr)
        return failing(EINVAL);
    if ((flags & RENAME_NOREPLACE) != 0 && isGranted(from))
        return failing(EEXIST);
    static const auto really = real<decltype(&::renameat2)>("renameat2");
    return really(fromFolder, from, toFolder, to, flags);
}

int linkat(int /*fromFolder*/, const char* /*from*/, int /*toFolder*/, const char* /*to*/, int /*flags*/)
{
    return failing(EPERM);
}

int openat(int folder, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeIn(rest);
    va_end(rest);
    if (const int error = errorOfOpening(flags))
        return failing(error);
    static const auto really = real<decltype(&::openat)>("openat");
    return really(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeIn(rest);
    va_end(rest);
    if (const int error = errorOfOpening(flags))
        return failing(error);
    static const auto really = real<decltype(&::openat64)>("openat64");
    return really(folder, path, flags, mode);
}

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeIn(rest);
    va_end(rest);
    static const auto really = real<decltype(&::open)>("open");
    return really(replacedPath(path), flags, mode);
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = modeIn(rest);
    va_end(rest);
    static const auto really = real<decltype(&::open64)>("open64");
    return really(replacedPath(path), flags, mode);
}

int flock(int /*file*/, int /*operation*/) noexcept
{
    return failing(ENOSYS);
}

int fstatfs(int file, struct statfs* status) noexcept
{
    static const auto really = real<decltype(&::fstatfs)>("fstatfs");
    const int result = really(file, status);
    status->f_type = fuse;
    return result;
}

int fstatfs64(int file, struct statfs64* status) noexcept
{
    static const auto really = real<decltype(&::fstatfs64)>("fstatfs64");
    const int result = really(file, status);
    status->f_type = fuse;
    return result;
}
}
