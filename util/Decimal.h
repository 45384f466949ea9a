// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwell
{

// Numbers as decimal text with a point, whatever the user's locale is.

/// The shortest decimal text, without an exponent, that reads back as the same double, with ".0" behind whole
/// numbers: "12.5", "40.0", "0.0". Infinities give "inf" and "-inf", anything that is not a number "nan".
std::string shortestDecimal(double value);

/// The value rounded to exactly two digits behind the point; `value` must be finite.
std::string twoDigitDecimal(double value);

/// The number that the whole text spells: a sign, digits, a fraction and an exponent, of which only digits
/// are needed. Nothing for other text, blanks around a number and words for infinity included.
std::optional<double> parseDecimal(std::string_view text);

/// The integer that the whole text spells; nothing for other text and for numbers beyond 64 bits.
std::optional<std::int64_t> parseInteger(std::string_view text);

/// The value without its fraction; beyond 64 bits the nearest integer there is, 0 for what is not a number.
std::int64_t truncated(double value);

} // namespace tarnwell
