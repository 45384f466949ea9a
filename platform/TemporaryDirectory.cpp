// SPDX-License-Identifier: MIT
#include "platform/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tarnwell
{

namespace
{

constexpr const char* folderTemplate = "/tarnwell-XXXXXX";

// Nothing can ever be created below a device.
constexpr const char* impossibleFolder = "/dev/null/";

void addFromEnvironment(std::vector<std::string>& folders, const char* variable)
{
    const char* value = std::getenv(variable);
    if (value != nullptr && value[0] == '/')
        folders.emplace_back(value);
}

std::vector<std::string> candidateFolders()
{
    std::vector<std::string> folders;
    addFromEnvironment(folders, "TMPDIR");
    folders.insert(folders.end(), {"/tmp", "/var/tmp"});
    addFromEnvironment(folders, "XDG_RUNTIME_DIR");
    return folders;
}

/// The path of a new folder, ending in "/".
std::string newFolder()
{
    for (const auto& folder : candidateFolders()) {
        std::string candidate = folder + folderTemplate;
        if (::mkdtemp(candidate.data()) != nullptr)
            return candidate + '/';
    }
    return impossibleFolder;
}

/// The path without its closing slash, behind which system calls follow a symbolic link.
std::string folderName(const std::string& path)
{
    return path.substr(0, path.size() - 1);
}

/// Another user may have created a folder or a link at this path.
bool isOwnFolder(const std::string& folder)
{
    struct stat status = {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

} // namespace

TemporaryDirectory::TemporaryDirectory()
    : m_path(newFolder())
{
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    if (const std::string folder = folderName(m_path); isOwnFolder(folder))
        std::filesystem::remove_all(folder, ignored);
}

void TemporaryDirectory::restore()
{
    const std::string folder = folderName(m_path);
    if (!isOwnFolder(folder) && ::mkdir(folder.c_str(), S_IRWXU) != 0)
        m_path = newFolder();
}

} // namespace tarnwell
