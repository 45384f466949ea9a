// SPDX-License-Identifier: MIT
#include "benchmarks/Commands.h"

#include "benchmarks/Measure.h"
#include "benchmarks/Report.h"

#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (auto& text : texts)
        pointers.push_back(text.data());
    return pointers;
}

pid_t start(const Command& command)
{
    std::vector<std::string> words = {command.program};
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    auto arguments = pointersTo(words);
    arguments.push_back(nullptr);
    std::vector<std::string> variables = command.variables;
    auto environment = pointersTo(variables);
    for (char** variable = environ; *variable != nullptr; ++variable)
        environment.push_back(*variable);
    environment.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    pid_t child = 0;
    // posix_spawn does not copy page tables, unlike fork: the benchmark's own size does not add to the time.
    if (::posix_spawnp(
            &child, command.program.c_str(), &actions, nullptr, arguments.data(), environment.data())
        != 0)
        exitWithError(command.program + " cannot be started");
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

} // namespace

double millisecondsToRun(const Command& command)
{
    const Stopwatch stopwatch;
    const pid_t child = start(command);
    int status = 0;
    ::waitpid(child, &status, 0);
    const double elapsed = stopwatch.elapsed();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::string line = command.program;
        for (const auto& argument : command.arguments)
            line.append(" ").append(argument);
        exitWithError("command failed: " + line);
    }
    return elapsed;
}

bool isInstalled(const std::string& program)
{
    const char* path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (::access((folder + "/" + program).c_str(), X_OK) == 0)
            return true;
    }
    return false;
}

} // namespace tarnwell::bench
