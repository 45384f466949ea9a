// SPDX-License-Identifier: MIT
#include "tools/HiddenFiles.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr std::time_t minimumAge = 86400; // seconds
constexpr int mostAttempts = 100;
constexpr std::size_t digits = 16;
const std::string prefix = ".tarnwell-unfinished-";

std::string inHex(std::uint64_t value)
{
    char text[digits + 1] = {};
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
    return text;
}

/// The 64-bit FNV-1a hash.
std::uint64_t hashOf(const std::string& text)
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char byte : text)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
    return hash;
}

std::string nameWith(const std::string& random)
{
    return prefix + random + "-" + inHex(hashOf(prefix + random));
}

/// `file` is open for reading. NFS refuses an exclusive lock of such a file; a shared one also fails while
/// another process has the exclusive lock. Some FUSE file systems have no locks (ENOSYS).
bool isStale(int file)
{
    struct stat status = {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid()
        && status.st_nlink == 1 && std::time(nullptr) - status.st_mtime > minimumAge
        && (::flock(file, LOCK_SH | LOCK_NB) == 0 || errno == ENOSYS);
}

} // namespace

int createHiddenFile(int folder, std::string& name)
{
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        std::uint64_t random = 0;
        if (::getrandom(&random, sizeof random, 0) != static_cast<ssize_t>(sizeof random))
            return -1;
        name = nameWith(inHex(random));
        const int file
            = ::openat(folder, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (file >= 0)
            ::flock(file, LOCK_EX | LOCK_NB);
        if (file >= 0 || errno != EEXIST)
            return file;
    }
    return -1;
}

void removeStaleHiddenFiles(int folder)
{
    const int readable = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (readable < 0)
        return;
    DIR* listing = ::fdopendir(readable);
    if (listing == nullptr) {
        ::close(readable);
        return;
    }
    while (const dirent* entry = ::readdir(listing)) {
        if (!isHiddenName(entry->d_name))
            continue;
        const int file = ::openat(folder, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (file >= 0 && isStale(file))
            ::unlinkat(folder, entry->d_name, 0);
        if (file >= 0)
            ::close(file);
    }
    ::closedir(listing);
}

bool isHiddenName(const std::string& name)
{
    return name.compare(0, prefix.size(), prefix) == 0 && name.size() > prefix.size() + digits
        && name == nameWith(name.substr(prefix.size(), digits));
}
