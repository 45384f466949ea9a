// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// What a tool may reach besides the system's libraries.
struct Reach {
    std::string program; // the one it is
    std::string readable; // the one file that it reads; empty for none
    int writable = -1; // the one file that it writes, open; -1 for none
    bool isProbe = false; // limits of memory and processor time for a report instead of an encoding
};

/// How much of it the kernel was able to promise.
struct Confinement {
    bool noNewPrivileges = false;
    bool limits = false;
    int fileRules = 0; // the version of the kernel's Landlock; 0 for none
    bool callFilter = false;
};

/// Removes the rights that a tool for untrusted files does not need from this process and the program that it
/// executes. For a child between fork and exec. Irreversible. Older kernels enforce less.
Confinement confine(const Reach& reach);

/// Describes what confine enforces on this machine, one line per rule. Tries it in a child process.
std::string describeConfinement();
