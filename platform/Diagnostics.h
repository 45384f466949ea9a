// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tarnwell
{

/// Prints one line to standard output, as raw bytes followed by a line feed. Thread-safe; lines keep the
/// order of the calls, and a line is printed whole or not at all.
///
/// A line for a regular file is written before the call returns. Every other line goes through a queue to a
/// writer thread, and the call waits until it is written, but for 100 ms at most, and not at all while
/// earlier lines are still waiting. Lines are lost only where standard output refuses them (closed, disk
/// full, reader gone) and where the queue holds 16 MiB that nobody reads: then the newest line is dropped.
///
/// A regular end of the process (exit, quick_exit) waits for the queue for as long as lines leave it: at most
/// 2 seconds for one line, 10 seconds in all. abort does not wait. The end of the process
/// can cut a line that is longer than a pipe's atomic size (PIPE_BUF); nothing else cuts lines.
void printLine(std::string_view line);

} // namespace tarnwell
