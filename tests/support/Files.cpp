// SPDX-License-Identifier: MIT
#include "tests/support/Files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace tarnwell::test
{

std::string contentsOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream contents;
    contents << file.rdbuf(); // a file that vanishes meanwhile, such as a process's, ends early instead of
                              // throwing
    return contents.str();
}

void writeFile(const std::string& path, const std::string& contents)
{
    std::ofstream(path, std::ios::binary) << contents;
}

bool exists(const std::string& path)
{
    return std::filesystem::exists(path);
}

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> recordedArguments(const std::string& path)
{
    std::vector<std::string> arguments;
    std::istringstream recorded(contentsOf(path));
    for (std::string argument; std::getline(recorded, argument, '\0');)
        arguments.push_back(argument);
    return arguments;
}

} // namespace tarnwell::test
