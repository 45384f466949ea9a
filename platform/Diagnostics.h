// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tarnwell
{

/// Prints one line to standard output, as raw bytes followed by a line feed. Thread-safe; lines keep the
/// order of the calls, and a line is printed whole or not at all.
///
/// A line for a regular file is written before the call returns. Every other line goes through a queue to a
/// writer thread; the call waits at most 100 ms until the line is written, or does not wait if earlier lines
/// are still in the queue. A line is lost only if writing fails (standard output closed, disk full, no
/// reader) or if the queue contains 16 MiB: then the newest line is dropped.
///
/// exit and quick_exit wait until the queue is empty: at most 2 seconds for one line and 10 seconds in all.
/// abort does not wait. The end of the process can cut a line that is longer than a pipe's atomic size
/// (PIPE_BUF); nothing else cuts lines.
void printLine(std::string_view line);

} // namespace tarnwell
