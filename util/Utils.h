// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnwell
{

/// Text functions for the encoder's status output. Thread-safe.
class Utils
{
public:
    /// All matches of an ICU regular expression in `text` (UTF-8), from left to right and without overlap;
    /// groups are not returned. For an invalid pattern prints "invalid regex: " with ICU's error name and
    /// returns an empty list.
    static std::vector<std::string> matchesForRegex(std::string_view pattern, std::string_view text);

    /// Converts HH:MM:SS.hh to seconds. The text after the point is a count of hundredths: ".5" is 0.05
    /// seconds. A missing or non-numeric part stops the program.
    static double secondsFromTimeString(std::string_view stamp);
};

} // namespace tarnwell
