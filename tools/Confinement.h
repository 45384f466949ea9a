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

/// Takes from this process, and from what it becomes, whatever a tool that reads a stranger's file has no use
/// for. For a child between fork and exec; there is no way back. A kernel that offers less gives less.
Confinement confine(const Reach& reach);

/// What confine would give on this machine, as text, a line each. Tried in a process of its own.
std::string describeConfinement();
