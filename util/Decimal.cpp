// SPDX-License-Identifier: MIT
#include "util/Decimal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace tarnwell
{

namespace
{

// The longest fixed texts: DBL_MAX has 309 digits before the point, the least denormal 1074 behind it, of
// which the shortest text that reads back needs only the first few after the zeros.
constexpr std::size_t longestFixedText = 1100;

// 2^63, the first double beyond the signed 64-bit range.
constexpr double integerLimit = 9223372036854775808.0;

template <typename... Format>
std::string fixedText(double value, Format... format)
{
    std::array<char, longestFixedText> text{};
    const auto written
        = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, format...);
    return {text.data(), written.ptr};
}

std::string_view withoutPlus(std::string_view text)
{
    return text.starts_with('+') && !text.starts_with("+-") ? text.substr(1) : text;
}

template <typename Number>
std::optional<Number> parseWhole(std::string_view text)
{
    text = withoutPlus(text);
    Number number{};
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace

std::string shortestDecimal(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    std::string text = fixedText(value);
    if (text.find('.') == std::string::npos)
        text += ".0";
    return text;
}

std::string twoDigitDecimal(double value)
{
    constexpr int digits = 2;
    return fixedText(value, digits);
}

std::optional<double> parseDecimal(std::string_view text)
{
    if (text.find_first_not_of("0123456789+-.eE") != std::string_view::npos)
        return std::nullopt;
    return parseWhole<double>(text);
}

std::optional<std::int64_t> parseInteger(std::string_view text)
{
    return parseWhole<std::int64_t>(text);
}

std::int64_t truncated(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= integerLimit)
        return std::numeric_limits<std::int64_t>::max();
    if (value < -integerLimit)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

} // namespace tarnwell
