// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// What a tool can access besides the system's libraries.
struct AccessRights {
    std::string program; // path of the tool itself
    std::string readable; // path of the file that it can read; empty for none
    int writable = -1; // descriptor of the file that it can write; -1 for none
    bool isProbe = false; // memory and time limits of a report instead of an encoding
};

/// The rules that the kernel enforces.
struct Confinement {
    bool noNewPrivileges = false;
    bool limits = false;
    int fileRules = 0; // version of Landlock; 0 if unavailable
    bool callFilter = false;
};

/// Drops the rights that a tool for untrusted files does not need, for this process and the program that it
/// executes. Called in a child between fork and exec. Irreversible. Older kernels enforce fewer rules.
Confinement confine(const AccessRights& rights);

/// Describes what confine enforces on this machine, one line per rule. Applies it in a child process.
std::string describeConfinement();
