// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tarnwell
{

/// Writes one line (UTF-8 or raw path bytes, without its line feed) to standard output, whole and at once.
/// Any thread may call it. A closed or full output loses the line and nothing else.
void printLine(std::string_view line);

} // namespace tarnwell
