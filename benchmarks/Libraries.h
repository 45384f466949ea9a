// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarnwell::bench
{

/// Names of libraries, without their folders.
using Libraries = std::set<std::string>;

/// The libraries among the lines of a /proc/PID/maps, without those that this benchmark brings in.
Libraries librariesIn(const std::string& maps);

/// Why libraries are loaded: a pattern for names, as a shell has it, and the reason.
using Reasons = std::vector<std::pair<std::string, std::string>>;

/// The reasons in a Markdown file: rows of tables that begin with a pattern in backquotes and end with a
/// reason.
Reasons readReasons(const std::string& path);

/// The reason of the first pattern that fits; empty where none does.
std::string reasonFor(const std::string& library, const Reasons& reasons);

} // namespace tarnwell::bench
