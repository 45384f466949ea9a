// SPDX-License-Identifier: MIT
#include "platform/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
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

} // namespace

TemporaryDirectory::TemporaryDirectory()
    : m_path(impossibleFolder)
{
    for (const auto& folder : candidateFolders()) {
        std::string candidate = folder + folderTemplate;
        if (::mkdtemp(candidate.data()) != nullptr) {
            m_path = candidate + '/';
            return;
        }
    }
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    if (m_path != impossibleFolder)
        std::filesystem::remove_all(m_path, ignored);
}

} // namespace tarnwell
