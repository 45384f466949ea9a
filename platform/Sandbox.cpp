// SPDX-License-Identifier: MIT
#include "platform/Sandbox.h"

#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell::Sandbox
{

namespace
{

bool isSameTime(const timespec& time, const timespec& other)
{
    return time.tv_sec == other.tv_sec && time.tv_nsec == other.tv_nsec;
}

} // namespace

bool isInside()
{
    return ::access("/.flatpak-info", F_OK) == 0;
}

bool areGrantsOfOneFile(const std::string& path, const std::string& otherPath)
{
    struct stat file = {};
    struct stat other = {};
    return ::stat(path.c_str(), &file) == 0 && ::stat(otherPath.c_str(), &other) == 0 && S_ISREG(file.st_mode)
        && S_ISREG(other.st_mode) && file.st_size == other.st_size && isSameTime(file.st_mtim, other.st_mtim)
        && isSameTime(file.st_ctim, other.st_ctim);
}

} // namespace tarnwell::Sandbox
