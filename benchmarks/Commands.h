// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace tarnwell::bench
{

/// A program, as a path or as a name that is searched in PATH, and its arguments. `variables`, each
/// "NAME=VALUE", are added to the environment.
struct Command {
    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::string> variables = {};
};

/// Runs the command with /dev/null as its standard streams, waits for it and returns the time in
/// milliseconds. Ends the benchmark if the command cannot be started or does not exit with 0.
double millisecondsToRun(const Command& command);

/// Whether PATH contains a program of that name.
bool isInstalled(const std::string& program);

} // namespace tarnwell::bench
