// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwell
{

/// Text helpers for what a running encoder reports. Any thread.
class Utils
{
public:
    /// Every match of an ICU pattern in `text` (UTF-8), whole and from left to right, none overlapping. A
    /// pattern that does not compile prints a line "invalid regex: " with the reason and matches nothing.
    static std::vector<std::string> matchesForRegex(std::string_view pattern, std::string_view text);

    /// Seconds in a time stamp HH:MM:SS.hh. The hundredths are a number that is divided by 100, so ".5" means
    /// five of them. A stamp that lacks a part or spells no number there stops the program.
    static double secondsFromTimeString(std::string_view stamp);
};

} // namespace tarnwell
