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

/// Other users can write to the temporary folder: what stands at the path may be theirs, or a link of theirs.
bool isOwnFolder(const std::string& path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

} // namespace

TemporaryDirectory::TemporaryDirectory()
    : m_path(newFolder())
{
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    if (m_path != impossibleFolder)
        std::filesystem::remove_all(m_path, ignored);
}

void TemporaryDirectory::restore()
{
    const std::string folder = m_path.substr(0, m_path.size() - 1); // lstat follows a link before a slash
    if (!isOwnFolder(folder) && ::mkdir(folder.c_str(), S_IRWXU) != 0)
        m_path = newFolder();
}

} // namespace tarnwell
