// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Writes lines to standard error, each with one write. A line that a full pipe does not take within a second
/// is dropped, and so are the next ones, at once, until the pipe is read again. The wait also ends when
/// `stopDescriptor` becomes readable.
void writeErrorLines(const std::string& lines, int stopDescriptor = -1);
