// SPDX-License-Identifier: MIT
#include "util/Utils.h"

#include "platform/Diagnostics.h"
#include "platform/FatalError.h"
#include "util/Decimal.h"
#include "util/Utf16.h"

#include <unicode/regex.h>

#include <memory>

namespace tarnwell
{

namespace
{

constexpr double secondsPerHour = 3600;
constexpr double secondsPerMinute = 60;
constexpr double hundredthsPerSecond = 100;

std::vector<std::string> matchesOf(const icu::RegexPattern& pattern, const icu::UnicodeString& text)
{
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(text, error));
    std::vector<std::string> matches;
    while (U_SUCCESS(error) && matcher->find(error)) {
        std::string match;
        matcher->group(error).toUTF8String(match);
        matches.push_back(std::move(match));
    }
    return matches;
}

std::vector<std::string_view> nonEmptyPieces(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        const auto end = text.find(separator);
        if (end != 0)
            pieces.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return pieces;
}

double requiredNumber(const std::vector<std::string_view>& pieces, std::size_t index)
{
    if (index >= pieces.size())
        fatalError();
    return required(parseDecimal(pieces[index]));
}

} // namespace

std::vector<std::string> Utils::matchesForRegex(std::string_view pattern, std::string_view text)
{
    UErrorCode error = U_ZERO_ERROR;
    UParseError place{};
    const std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(utf16FromUtf8(pattern), 0, place, error));
    if (U_FAILURE(error)) {
        printLine(std::string("invalid regex: ") + u_errorName(error));
        return {};
    }
    return matchesOf(*compiled, utf16FromUtf8(text));
}

double Utils::secondsFromTimeString(std::string_view stamp)
{
    const auto parts = nonEmptyPieces(stamp, '.');
    if (parts.empty())
        fatalError();
    const double hundredths = requiredNumber(parts, parts.size() - 1);
    const auto clock = nonEmptyPieces(parts.front(), ':');
    const double hours = requiredNumber(clock, 0);
    const double minutes = requiredNumber(clock, 1);
    const double seconds = requiredNumber(clock, clock.size() - 1);
    return hours * secondsPerHour
        + (minutes * secondsPerMinute + (hundredths / hundredthsPerSecond + seconds));
}

} // namespace tarnwell
