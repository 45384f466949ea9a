// SPDX-License-Identifier: MIT
#pragma once

#include <string>

constexpr int newestFileRules = 6; // the newest version of Landlock whose features are used

/// Restricts this process, irreversibly, to these files: the system files that every program needs (libraries
/// and the files that they read), the program to execute, one file to read and one open file to write; an
/// empty path and -1 mean none. Also refuses the network and signals to other processes if the kernel
/// supports it. Returns the enforced version of Landlock, 1 to `newest`, or 0 if it is unavailable or
/// switched off.
int restrictFiles(
    const std::string& program, const std::string& readable, int writable, int newest = newestFileRules);
