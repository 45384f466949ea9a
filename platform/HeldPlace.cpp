// SPDX-License-Identifier: MIT
#include "platform/HeldPlace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell
{

HeldPlace::HeldPlace(const std::string& path)
    : m_originalPath(path)
{
    if (const std::string folder = originalFolder(); !folder.empty())
        m_folder = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

HeldPlace::~HeldPlace()
{
    if (m_folder >= 0)
        ::close(m_folder);
}

bool HeldPlace::isAtOriginalPath() const
{
    if (m_folder < 0)
        return true;
    struct stat held = {};
    struct stat current = {};
    return ::fstat(m_folder, &held) == 0 && ::stat(originalFolder().c_str(), &current) == 0
        && held.st_dev == current.st_dev && held.st_ino == current.st_ino;
}

std::string HeldPlace::originalFolder() const
{
    const auto slash = m_originalPath.rfind('/');
    return slash == std::string::npos ? std::string() : m_originalPath.substr(0, slash + 1);
}

std::string HeldPlace::path() const
{
    if (m_folder < 0)
        return m_originalPath;
    return "/proc/self/fd/" + std::to_string(m_folder) + m_originalPath.substr(m_originalPath.rfind('/'));
}

} // namespace tarnwell
