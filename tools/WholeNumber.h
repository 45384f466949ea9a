// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

/// The decimal number that the whole text consists of. Empty for other text and for numbers of more than 64
/// bits.
inline std::optional<std::int64_t> wholeNumber(const std::string& text)
{
    std::int64_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size())
        return std::nullopt;
    return number;
}
