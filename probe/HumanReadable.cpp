// SPDX-License-Identifier: MIT
#include "probe/HumanReadable.h"

#include "platform/Diagnostics.h"
#include "platform/FatalError.h"
#include "platform/FileAttributes.h"
#include "util/Decimal.h"

#include <iterator>
#include <optional>
#include <string_view>

namespace tarnwell
{

namespace
{

constexpr std::uint64_t unitStep = 1000;
constexpr std::string_view noBytes = "Zero KB";

struct Unit {
    std::string_view name;
    std::uint64_t bytes;
    std::uint64_t fractionSteps; // 10: one digit after the point; 100: two
};

constexpr Unit units[] = {
    {"KB", 1000, 1},
    {"MB", 1000000, 10},
    {"GB", 1000000000, 100},
    {"TB", 1000000000000, 100},
    {"PB", 1000000000000000, 100},
    {"EB", 1000000000000000000, 100},
};

// The count in units of the last printed digit, rounded half up. Adding half a step to `bytes` could
// overflow.
std::uint64_t roundedSteps(std::uint64_t bytes, const Unit& unit)
{
    const std::uint64_t step = unit.bytes / unit.fractionSteps;
    return bytes / step + (bytes % step >= step - step / 2 ? 1 : 0);
}

std::string countText(std::uint64_t steps, std::uint64_t fractionSteps)
{
    std::string text = std::to_string(steps / fractionSteps);
    std::uint64_t fraction = steps % fractionSteps;
    if (fraction == 0)
        return text;
    text += '.';
    for (auto digit = fractionSteps / 10; digit > 0 && fraction > 0; digit /= 10) {
        text += static_cast<char>('0' + fraction / digit);
        fraction %= digit;
    }
    return text;
}

std::optional<std::uint64_t> reportedFileSize(const std::string& path)
{
    const auto outcome = attributesOfItem(path);
    if (const auto* error = std::get_if<std::string>(&outcome)) {
        printLine("Failed to get file attributes for local path: " + path + " with error: " + *error);
        return std::nullopt;
    }
    const auto size = std::get<FileAttributes>(outcome).size;
    if (!size)
        printLine("Failed to get a size attribute from path: " + path);
    return size;
}

std::string twoDigits(std::int64_t number)
{
    std::string digits = number < 10 ? "0" : "";
    return digits += std::to_string(number);
}

std::string hundredthsOf(double seconds)
{
    const std::string text = twoDigitDecimal(seconds);
    return text.substr(text.find('.') + 1);
}

} // namespace

std::uint64_t fileSize(const std::string& path)
{
    return reportedFileSize(path).value_or(0);
}

std::string humanFileSize(const std::string& path)
{
    const auto size = reportedFileSize(path);
    return size ? humanByteCount(*size) : "Unknown File Size";
}

std::string humanByteCount(std::uint64_t bytes)
{
    if (bytes == 0)
        return std::string(noBytes);
    if (bytes < unitStep)
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    for (const auto& unit : units) {
        const auto steps = roundedSteps(bytes, unit);
        // 1000 of a unit is printed as 1 of the next one.
        if (steps < unitStep * unit.fractionSteps || &unit == std::end(units) - 1)
            return countText(steps, unit.fractionSteps).append(" ").append(unit.name);
    }
    fatalError();
}

std::string humanDuration(double seconds)
{
    constexpr std::int64_t secondsPerHour = 3600;
    constexpr std::int64_t sixty = 60;
    if (!fitsInteger(seconds))
        fatalError();
    const std::int64_t whole = truncated(seconds);
    return twoDigits(whole / secondsPerHour) + ":" + twoDigits(whole / sixty % sixty) + ":"
        + twoDigits(whole % sixty) + "." + hundredthsOf(seconds);
}

} // namespace tarnwell
