// SPDX-License-Identifier: MIT
#include "platform/HeldPlace.h"

#include <fcntl.h>
#include <unistd.h>

namespace tarnwell
{

HeldPlace::HeldPlace(const std::string& path)
    : m_originalPath(path)
{
    if (const auto slash = path.rfind('/'); slash != std::string::npos)
        m_folder = ::open(path.substr(0, slash + 1).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

HeldPlace::~HeldPlace()
{
    if (m_folder >= 0)
        ::close(m_folder);
}

std::string HeldPlace::path() const
{
    if (m_folder < 0)
        return m_originalPath;
    return "/proc/self/fd/" + std::to_string(m_folder) + m_originalPath.substr(m_originalPath.rfind('/'));
}

} // namespace tarnwell
