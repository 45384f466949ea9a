// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tarnwell
{

/// Writes one line (UTF-8 or raw path bytes, without its line feed) to standard output, whole and at once.
/// Any thread may call it. It never waits: an output that is closed, full, or a pipe or terminal that nobody
/// reads loses the line, or the end of a long one, and nothing else.
void printLine(std::string_view line);

} // namespace tarnwell
