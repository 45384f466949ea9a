// SPDX-License-Identifier: MIT
#include "platform/Bundle.h"

#include "platform/FileAttributes.h"

#include <filesystem>
#include <system_error>

namespace tarnwell
{

namespace
{

// The executable's folder comes last: in a folder such as /usr/bin another program can have the same name.
constexpr std::string_view resourceFolders[] = {"/../libexec/tarnwell", "/../share/tarnwell", ""};
constexpr std::string_view imageExtension = ".png";

} // namespace

Bundle::Bundle(std::string executableFolder)
    : m_executableFolder(std::move(executableFolder))
{
}

Bundle Bundle::main()
{
    std::error_code error;
    return Bundle(std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string());
}

std::optional<std::string> Bundle::pathForResource(std::string_view name) const
{
    for (const auto folder : resourceFolders) {
        std::string path = m_executableFolder;
        path.append(folder).append("/").append(name);
        if (isExistingFile(path))
            return path;
    }
    return std::nullopt;
}

std::optional<std::string> Bundle::pathForImageResource(std::string_view name) const
{
    return pathForResource(std::string(name).append(imageExtension));
}

} // namespace tarnwell
