// SPDX-License-Identifier: MIT
#include "platform/FileAttributes.h"

#include <cerrno>
#include <sys/stat.h>
#include <system_error>

namespace tarnwell
{

std::variant<FileAttributes, std::string> attributesOfItem(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return std::generic_category().message(errno);
    FileAttributes attributes;
    attributes.isDirectory = S_ISDIR(status.st_mode);
    if (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode))
        attributes.size = static_cast<std::uint64_t>(status.st_size);
    return attributes;
}

bool isExistingFile(const std::string& path)
{
    const auto outcome = attributesOfItem(path);
    const auto* attributes = std::get_if<FileAttributes>(&outcome);
    return attributes != nullptr && !attributes->isDirectory;
}

} // namespace tarnwell
