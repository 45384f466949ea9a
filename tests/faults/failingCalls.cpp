// SPDX-License-Identifier: MIT
// An LD_PRELOAD library that makes the N-th call of a function fail, or every call. TARNWELL_FAILS is
// "FUNCTION N", or "FUNCTION -1". The library creates the file named by TARNWELL_FAILED when the call has
// failed. Only calls from the program itself and from the C++ library count. With TARNWELL_WAITS_FOR the call
// waits until the file that this variable names exists, and succeeds. When the process exits, the library
// writes the number of calls per function to the file named by TARNWELL_COUNTS, one line "FUNCTION N" each.
#include "tests/faults/FailurePlan.h"
#include "tests/faults/Preloaded.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{

/// FICLONE of a file system that shares blocks. Waits for the file that TARNWELL_CLONE_WAITS_FOR names.
int clone(int target, int source)
{
    static const auto readReally = real<decltype(&::pread64)>("pread64");
    static const auto writeReally = real<decltype(&::pwrite64)>("pwrite64");
    char bytes[65536];
    off64_t offset = 0;
    for (ssize_t count = 1; count > 0; offset += count) {
        count = readReally(source, bytes, sizeof(bytes), offset);
        if (count > 0 && writeReally(target, bytes, static_cast<std::size_t>(count), offset) != count)
            return failing(EIO);
    }
    waitIfRequested("TARNWELL_CLONE_WAITS_FOR");
    return 0;
}

/// Whether the name has more bytes than TARNWELL_LONGEST_NAME allows.
bool isTooLong(const char* name)
{
    const char* longest = std::getenv("TARNWELL_LONGEST_NAME");
    return longest != nullptr && std::strlen(name) > std::strtoul(longest, nullptr, 10);
}

bool isFolder(int file)
{
    struct stat status = {};
    return ::fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

#define FAIL_OR(call, error)                                                                                 \
    if (shouldFail(#call, __builtin_return_address(0)))                                                      \
        return failing(error);                                                                               \
    static const auto really = real<decltype(&::call)>(#call)

// With 64-bit file offsets (_FILE_OFFSET_BITS), a program calls functions whose names end in 64. They count
// as the same function.
#define FAIL_OR_64(call, error)                                                                              \
    if (shouldFail(#call, __builtin_return_address(0)))                                                      \
        return failing(error);                                                                               \
    static const auto really = real<decltype(&::call##64)>(#call "64")

// For stat and lstat. A call that fails by itself, as for a missing file, does not count.
#define STAT_OR_FAIL(call, type, name)                                                                       \
    static const auto really = real<int (*)(const char*, struct type*)>(name);                               \
    struct type found = {};                                                                                  \
    if (really(path, &found) != 0)                                                                           \
        return -1;                                                                                           \
    if (shouldFail(#call, __builtin_return_address(0)))                                                      \
        return failing(EACCES);                                                                              \
    *status = found;                                                                                         \
    return 0

/// Defines the argument after `last` of a function with variable arguments.
#define READ_ARGUMENT(type, name, last)                                                                      \
    va_list rest;                                                                                            \
    va_start(rest, last);                                                                                    \
    const auto name = va_arg(rest, type);                                                                    \
    va_end(rest)

extern "C" {

int pipe2(int ends[2], int flags)
{
    FAIL_OR(pipe2, EMFILE);
    return really(ends, flags);
}

pid_t fork()
{
    FAIL_OR(fork, EAGAIN);
    return really();
}

int posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
    const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[])
{
    if (shouldFail("posix_spawn", __builtin_return_address(0)))
        return EAGAIN;
    static const auto really = real<decltype(&::posix_spawn)>("posix_spawn");
    return really(child, path, actions, attributes, arguments, environment);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*work)(void*), void* argument)
{
    if (shouldFail("pthread_create", __builtin_return_address(0)))
        return EAGAIN;
    static const auto really = real<decltype(&::pthread_create)>("pthread_create");
    return really(thread, attributes, work, argument);
}

ssize_t read(int file, void* bytes, size_t count)
{
    FAIL_OR(read, EIO);
    return really(file, bytes, count);
}

ssize_t write(int file, const void* bytes, size_t count)
{
    FAIL_OR(write, EINTR);
    return really(file, bytes, count);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t place)
{
    FAIL_OR(pwrite, ENOSPC);
    return really(file, bytes, count, place);
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t place)
{
    FAIL_OR_64(pwrite, ENOSPC);
    return really(file, bytes, count, place);
}

ssize_t pread64(int file, void* bytes, size_t count, off64_t place)
{
    FAIL_OR_64(pread, EIO);
    return really(file, bytes, count, place);
}

off64_t lseek64(int file, off64_t offset, int from) noexcept
{
    FAIL_OR_64(lseek, EINVAL);
    return really(file, offset, from);
}

int ioctl(int file, unsigned long request, ...) noexcept
{
    READ_ARGUMENT(void*, argument, request);
    FAIL_OR(ioctl, EIO);
    if (request == FICLONE && std::getenv("TARNWELL_CLONE_WAITS_FOR") != nullptr)
        return clone(file, static_cast<int>(reinterpret_cast<std::intptr_t>(argument)));
    return really(file, request, argument);
}

/// The second call waits for the file that TARNWELL_COPY_WAITS_FOR names.
ssize_t copy_file_range(
    int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size, unsigned int flags)
{
    static std::atomic<int> copies = 0;
    if (++copies == 2)
        waitIfRequested("TARNWELL_COPY_WAITS_FOR");
    FAIL_OR(copy_file_range, EIO);
    return really(from, fromOffset, to, toOffset, size, flags);
}

/// A call that waits for the disk waits for the file that TARNWELL_WRITEBACK_WAITS_FOR names.
int sync_file_range(int file, off64_t offset, off64_t size, unsigned int flags)
{
    if ((flags & SYNC_FILE_RANGE_WAIT_BEFORE) != 0)
        waitIfRequested("TARNWELL_WRITEBACK_WAITS_FOR");
    FAIL_OR(sync_file_range, EIO);
    return really(file, offset, size, flags);
}

int poll(pollfd* files, nfds_t count, int timeout)
{
    FAIL_OR(poll, EINTR);
    return really(files, count, timeout);
}

int waitid(idtype_t type, id_t id, siginfo_t* info, int options)
{
    FAIL_OR(waitid, EINTR);
    return really(type, id, info, options);
}

pid_t waitpid(pid_t child, int* status, int options)
{
    FAIL_OR(waitpid, EINTR);
    return really(child, status, options);
}

int stat(const char* path, struct stat* status)
{
    STAT_OR_FAIL(stat, stat, "stat");
}

int stat64(const char* path, struct stat64* status) noexcept
{
    STAT_OR_FAIL(stat, stat64, "stat64");
}

int lstat(const char* path, struct stat* status)
{
    STAT_OR_FAIL(lstat, stat, "lstat");
}

int lstat64(const char* path, struct stat64* status) noexcept
{
    STAT_OR_FAIL(lstat, stat64, "lstat64");
}

int fstat(int file, struct stat* status)
{
    FAIL_OR(fstat, EIO);
    return really(file, status);
}

int fstat64(int file, struct stat64* status) noexcept
{
    FAIL_OR_64(fstat, EIO);
    return really(file, status);
}

int open(const char* path, int flags, ...)
{
    READ_ARGUMENT(mode_t, mode, flags);
    FAIL_OR(open, EMFILE);
    return really(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    READ_ARGUMENT(mode_t, mode, flags);
    FAIL_OR_64(open, EMFILE);
    return really(path, flags, mode);
}

char* mkdtemp(char* path)
{
    if (shouldFail("mkdtemp", __builtin_return_address(0))) {
        errno = ENOSPC;
        return nullptr;
    }
    static const auto really = real<decltype(&::mkdtemp)>("mkdtemp");
    return really(path);
}

int fsync(int file)
{
    waitIfRequested(isFolder(file) ? "TARNWELL_FOLDER_FSYNC_WAITS_FOR" : "TARNWELL_FSYNC_WAITS_FOR");
    FAIL_OR(fsync, EIO);
    return really(file);
}

int ftruncate(int file, off_t size)
{
    FAIL_OR(ftruncate, EIO);
    return really(file, size);
}

int ftruncate64(int file, off64_t size) noexcept
{
    FAIL_OR_64(ftruncate, EIO);
    return really(file, size);
}

int openat64(int folder, const char* path, int flags, ...)
{
    READ_ARGUMENT(mode_t, mode, flags);
    FAIL_OR_64(openat, EMFILE);
    return really(folder, path, flags, mode);
}

int fstatat64(int folder, const char* path, struct stat64* status, int flags) noexcept
{
    FAIL_OR_64(fstatat, EACCES);
    return really(folder, path, status, flags);
}

int fsetxattr(int file, const char* name, const void* value, size_t size, int flags) noexcept
{
    FAIL_OR(fsetxattr, EPERM);
    return really(file, name, value, size, flags);
}

int fremovexattr(int file, const char* name) noexcept
{
    FAIL_OR(fremovexattr, EPERM);
    return really(file, name);
}

int fchmod(int file, mode_t mode) noexcept
{
    FAIL_OR(fchmod, EPERM);
    return really(file, mode);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags)
{
    FAIL_OR(linkat, EACCES);
    return really(fromFolder, from, toFolder, to, flags);
}

int rename(const char* from, const char* to)
{
    FAIL_OR(rename, EIO);
    return really(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned int flags)
{
    FAIL_OR(renameat2, EIO);
    if (isTooLong(to))
        return failing(ENAMETOOLONG);
    return really(fromFolder, from, toFolder, to, flags);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept
{
    FAIL_OR(renameat, EIO);
    return really(fromFolder, from, toFolder, to);
}

int unlinkat(int folder, const char* path, int flags)
{
    FAIL_OR(unlinkat, EACCES);
    return really(folder, path, flags);
}

int remove(const char* path) noexcept
{
    FAIL_OR(remove, EACCES);
    return really(path);
}

int unlink(const char* path)
{
    FAIL_OR(unlink, EACCES);
    return really(path);
}
}
