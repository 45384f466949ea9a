// SPDX-License-Identifier: MIT
#pragma once

namespace tarnwell
{

/// Prepares the standard descriptors and the signals that depend on the program's starter. Call it first in
/// main.
/// - Opens closed standard descriptors on /dev/null. Otherwise a pipe or file of the program takes the
/// number,
///   and a tool inherits it as a standard stream.
/// - Ignores SIGPIPE: a write to a pipe without a reader fails with EPIPE. Tools inherit this, so that an
///   encoder continues when the program that reads its output ends.
/// - Sets SIGCHLD to its default: a child's number is not reused before the program has reaped the child.
void prepareStandardStreams();

} // namespace tarnwell
