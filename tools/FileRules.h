// SPDX-License-Identifier: MIT
#pragma once

#include <string>

constexpr int newestFileRules = 6; // the newest version of Landlock that asks anything new of its callers

/// Leaves this process, for good, only these files: what the system gives every program (its libraries, and
/// what they ask of the machine's description), the program to be run, one file to read and one open file to
/// write; an empty path and -1 stand for none. No network and no signals to others either, where the kernel
/// can do that. The version of Landlock, from 1 to `newest`, that holds the rules; 0 where the kernel has
/// none or it is switched off.
int restrictFiles(
    const std::string& program, const std::string& readable, int writable, int newest = newestFileRules);
