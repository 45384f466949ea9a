// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Writes lines to standard error, each with one write. A line that a full pipe does not accept within a
/// second is dropped. The next lines are then dropped without a wait until the pipe has room again. The wait
/// also ends when `stopDescriptor` becomes readable.
void writeErrorLines(const std::string& lines, int stopDescriptor = -1);

/// Writes the last status line that was passed to writeErrorLines again if this was 0.45 seconds ago or more.
/// For work that has no progress of its own.
void repeatStatusLine(int stopDescriptor);
