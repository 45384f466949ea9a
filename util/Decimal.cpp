// SPDX-License-Identifier: MIT
#include "util/Decimal.h"

#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace tarnwell
{

namespace
{

// Characters of the longest fixed text: the least denormal has 324 zeros, a sign, a point and up to 17
// digits; DBL_MAX with two decimals is shorter.
constexpr std::size_t longestFixedText = 400;

template <typename... Format>
std::string writtenNumber(double value, Format... format)
{
    std::array<char, longestFixedText> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value, format...);
    return {text.data(), written.ptr};
}

} // namespace

std::string shortestDecimal(double value)
{
    if (std::isnan(value))
        return "nan"; // to_chars writes a sign too
    std::string text = writtenNumber(value, std::chars_format::fixed);
    if (std::isfinite(value) && text.find('.') == std::string::npos)
        text += ".0";
    return text;
}

std::string compactDecimal(double value)
{
    constexpr double leastWithoutExponent = 1e-6;
    constexpr double leastLargeWithExponent = 1e21;
    const double magnitude = std::abs(value);
    if (magnitude == 0 || (magnitude >= leastWithoutExponent && magnitude < leastLargeWithExponent))
        return writtenNumber(value, std::chars_format::fixed);
    return writtenNumber(value);
}

std::string twoDigitDecimal(double value)
{
    constexpr int digits = 2;
    return writtenNumber(value, std::chars_format::fixed, digits);
}

std::optional<double> parseDecimal(std::string_view text)
{
    if (text.empty() || text.find_first_not_of("0123456789+-.eE") != std::string_view::npos)
        return std::nullopt;
    // from_chars reports overflow and underflow alike; strtod returns infinity and zero.
    static const locale_t decimalPoint = ::newlocale(LC_ALL_MASK, "C", nullptr);
    const std::string terminated(text);
    char* end = nullptr;
    const double number = ::strtod_l(terminated.c_str(), &end, decimalPoint);
    if (end != terminated.c_str() + terminated.size())
        return std::nullopt;
    return number;
}

std::optional<std::int64_t> parseInteger(std::string_view text)
{
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    std::int64_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size())
        return std::nullopt;
    return number;
}

bool fitsInteger(double value)
{
    constexpr double limit = 0x1p63;
    return value >= -limit && value < limit;
}

std::int64_t truncated(double value)
{
    using Limits = std::numeric_limits<std::int64_t>;
    if (std::isnan(value))
        return 0;
    if (!fitsInteger(value))
        return value > 0 ? Limits::max() : Limits::min();
    return static_cast<std::int64_t>(value);
}

} // namespace tarnwell
