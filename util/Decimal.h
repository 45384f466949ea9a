// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwell
{

// Conversions between numbers and decimal text with a point, independent of the user's locale.

/// The shortest text without an exponent that reads back as the same double, with ".0" after whole numbers:
/// "12.5", "40.0", "-0.0". Infinities are "inf" and "-inf", not-a-number is "nan".
std::string shortestDecimal(double value);

/// The shortest text that reads back as the same double, without ".0" after whole numbers and with an
/// exponent only below 1e-6 and from 1e21 on: "12.5", "100000", "0.0001", "1e+300". Infinities are "inf" and
/// "-inf".
std::string compactDecimal(double value);

/// The value rounded to two digits after the point. `value` must be finite.
std::string twoDigitDecimal(double value);

/// Parses the whole text as sign, digits, fraction and exponent; only digits are mandatory. Beyond double's
/// range the result is infinity or zero. Empty for every other text, such as " 1", "0x1" and "inf".
std::optional<double> parseDecimal(std::string_view text);

/// Parses the whole text as an integer. Empty for every other text and beyond 64 bits.
std::optional<std::int64_t> parseInteger(std::string_view text);

/// Whether `value` without its fraction is a signed 64-bit integer; false for not-a-number.
bool fitsInteger(double value);

/// The value without its fraction. Beyond 64 bits the nearest 64-bit integer; 0 for not-a-number.
std::int64_t truncated(double value);

} // namespace tarnwell
