// SPDX-License-Identifier: MIT
#include "platform/FileFingerprint.h"

#include <sys/stat.h>

namespace tarnwell
{

namespace
{

std::array<std::uint64_t, 3> valuesOf(const struct stat& status)
{
    const auto number = [](auto value) { return static_cast<std::uint64_t>(value); };
    return {number(status.st_size), number(status.st_mtim.tv_sec), number(status.st_mtim.tv_nsec)};
}

} // namespace

FileFingerprint::FileFingerprint(const std::string& path)
    : m_item{}
    , m_target{}
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) == 0)
        m_item = valuesOf(status);
    if (::stat(path.c_str(), &status) == 0)
        m_target = valuesOf(status);
}

} // namespace tarnwell
