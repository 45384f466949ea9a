// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace tarnwell::test
{

/// A system call that file systems refuse which cannot do all that others can.
enum class RefusedCall {
    OpenNameless, // a file without a name
    RenameToFreeName // a rename that leaves what stands there
};

/// Runs the action in a process of its own in which the system refuses that call; whether it returned true
/// there.
bool holdsWithout(RefusedCall call, const std::function<bool()>& action);

} // namespace tarnwell::test
