// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace tarnwell::bench
{

/// A program, by path or by a name that PATH leads to, and its arguments; `variables`, each "NAME=VALUE", are
/// added to the environment.
struct Command {
    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::string> variables = {};
};

/// Runs the command with the null device for its standard streams and waits for it: how long that took, in
/// milliseconds. A command that cannot be started or does not exit with 0 ends the benchmark.
double millisecondsToRun(const Command& command);

/// Whether PATH leads to a program of that name.
bool isInstalled(const std::string& program);

} // namespace tarnwell::bench
