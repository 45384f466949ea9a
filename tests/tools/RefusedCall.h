// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace tarnwell::test
{

/// A system call that not every file system or kernel supports.
enum class RefusedCall {
    OpenNameless, // unnamed files (O_TMPFILE)
    MakeFiles, // new files, as on a full disk
    RenameToFreeName, // a rename that does not replace an existing file
    Link, // hard links
    RemoveNames, // renames and deletions, as in an append-only folder
    CopyFileRange, // a copy by the kernel
    ShareBlocks, // a copy that shares its blocks with the source (FICLONE)
    ExclusiveLock, // as NFS refuses it for a file that is open for reading
    FileRules, // Landlock
    CallFilters // seccomp; must be refused last
};

/// Makes the call fail in this process and its children from now on. False if that is not possible.
bool refuse(RefusedCall call);

/// Runs the action in a child process and returns its result.
bool holdsInChild(const std::function<bool()>& action);

/// Runs the action in a child process in which the call fails, and returns its result.
bool holdsWithout(RefusedCall call, const std::function<bool()>& action);

} // namespace tarnwell::test
