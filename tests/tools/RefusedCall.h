// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace tarnwell::test
{

/// A system call that some file systems and kernels refuse which others offer.
enum class RefusedCall {
    OpenNameless, // a file without a name
    MakeFiles, // as on a disk that has no room for one more
    RenameToFreeName, // a rename that leaves what stands there
    Link, // a second name
    RemoveNames, // renames and deletions, as in a folder to which only can be added
    CopyFileRange, // a copy by the kernel
    ExclusiveLock, // as NFS refuses it for a file that is open for reading
    FileRules, // Landlock
    CallFilters // seccomp; it must be the last one to be refused
};

/// From now on the system refuses that call to this process and its children. False where it cannot be made
/// to.
bool refuse(RefusedCall call);

/// Runs the action in a process of its own; whether it returned true there.
bool holdsInChild(const std::function<bool()>& action);

/// Runs the action in a process of its own in which the system refuses that call; whether it returned true
/// there.
bool holdsWithout(RefusedCall call, const std::function<bool()>& action);

} // namespace tarnwell::test
