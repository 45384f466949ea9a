// SPDX-License-Identifier: MIT
#include "export/Progress.h"

#include "platform/FatalError.h"
#include "util/Decimal.h"
#include "util/Unicode.h"
#include "util/Utils.h"

namespace tarnwell
{

namespace
{

constexpr std::string_view statusMark = "time=";

// The unescaped dot matches any character. secondsFromTimeString stops the program if it is not a point.
constexpr std::string_view timeStampPattern = "([0-9][0-9]):([0-9][0-9]):([0-9][0-9]).([0-9][0-9])";

constexpr double percentPerWhole = 100.0;

} // namespace

std::optional<double> elapsedSecondsFromChunk(std::string_view chunk)
{
    if (!isValidUtf8(chunk) || chunk.find(statusMark) == std::string_view::npos)
        return std::nullopt;
    const auto stamps = Utils::matchesForRegex(timeStampPattern, chunk);
    if (stamps.empty())
        fatalError();
    return Utils::secondsFromTimeString(stamps.front());
}

double percentOf(double elapsedSeconds, double duration)
{
    return elapsedSeconds / duration * percentPerWhole;
}

std::string percentLine(double percent)
{
    return "Percent : " + shortestDecimal(percent);
}

} // namespace tarnwell
