// SPDX-License-Identifier: MIT
#pragma once

/// Makes the kernel refuse, for this process and the program that it executes, all system calls that access
/// other processes or change files that it has not opened: sockets, new processes, other processes, mounts,
/// namespaces, keys, shared memory, attributes of files, kernel internals. Irreversible. Threads and its own
/// files are allowed. False if the kernel has no seccomp.
bool refuseCalls();
