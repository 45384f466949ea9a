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

// The last dot accepts any character; what is no dot there stops the conversion afterwards.
constexpr std::string_view timeStampPattern = "([0-9][0-9]):([0-9][0-9]):([0-9][0-9]).([0-9][0-9])";

constexpr double hundred = 100.0;

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
    return elapsedSeconds / duration * hundred;
}

std::string percentLine(double percent)
{
    return "Percent : " + shortestDecimal(percent);
}

} // namespace tarnwell
