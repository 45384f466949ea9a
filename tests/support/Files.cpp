// SPDX-License-Identifier: MIT
#include "tests/support/Files.h"

#include "tests/support/TimeLimit.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace tarnwell::test
{

std::string contentsOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream contents;
    contents << file.rdbuf(); // if the file disappears during the read, such as one in /proc, this ends early
                              // and does not throw
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

testing::AssertionResult waitForFile(const std::string& path)
{
    constexpr std::chrono::milliseconds interval(2);
    const auto deadline = std::chrono::steady_clock::now() + longestWait;
    while (!exists(path)) {
        if (std::chrono::steady_clock::now() > deadline)
            return testing::AssertionFailure()
                << path << " did not come within " << longestWait.count() << " s";
        std::this_thread::sleep_for(interval);
    }
    return testing::AssertionSuccess();
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
