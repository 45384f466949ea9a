// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarnwell::bench
{

/// File names of libraries, without their folders.
using Libraries = std::set<std::string>;

/// The libraries in the text of /proc/PID/maps, except the benchmark's own plugin.
Libraries librariesIn(const std::string& maps);

/// Pairs of a shell pattern of library names and the reason why these libraries are loaded.
using Reasons = std::vector<std::pair<std::string, std::string>>;

/// Reads the reasons from the table rows of a Markdown file whose first cell is a pattern in backquotes.
Reasons readReasons(const std::string& path);

/// The reason of the first pattern that matches; empty if none does.
std::string reasonFor(const std::string& library, const Reasons& reasons);

} // namespace tarnwell::bench
