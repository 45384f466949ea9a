// SPDX-License-Identifier: MIT
#pragma once

/// From now on the kernel refuses this process, and what it becomes, every call by which a program reaches
/// others or changes what it has not opened: sockets, new processes, other processes, mounts, namespaces,
/// keys, shared memory, the attributes of files, the kernel's own insides. Threads and its own files stay.
/// False where the kernel cannot.
bool refuseCalls();
