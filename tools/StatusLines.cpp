// SPDX-License-Identifier: MIT
#include "tools/StatusLines.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace
{

const std::string timeKey = "out_time_us=";
const std::string blockEnd = "progress=";
const std::string statusMark = "time=";

// A flood without an end of line must not fill the memory, and a line with its end fits one write to a pipe.
constexpr std::size_t longestLine = 4095;

constexpr std::int64_t microsecondsPerHundredth = 10000;
constexpr std::int64_t latest = 35999999; // 99:59:59.99, in hundredths

bool startsWith(const std::string& text, const std::string& beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

/// Takes the next whole line out of `rest`; what is longer than a line can be counts as one.
std::optional<std::string> nextLine(std::string& rest)
{
    const auto end = rest.find_first_of("\r\n");
    if (end == std::string::npos && rest.size() < longestLine)
        return std::nullopt;
    const std::string line = rest.substr(0, std::min(end, longestLine));
    rest.erase(0, end == std::string::npos ? line.size() : end + 1);
    return line;
}

std::optional<std::int64_t> wholeNumber(const std::string& text)
{
    std::int64_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || number < 0)
        return std::nullopt;
    return number;
}

std::string withoutStatusMarks(std::string line)
{
    std::replace_if(
        line.begin(), line.end(), [](char byte) { return byte < ' ' || byte > '~'; }, '?');
    for (auto mark = line.find(statusMark); mark != std::string::npos; mark = line.find(statusMark))
        line[mark + statusMark.size() - 1] = ':';
    return line;
}

} // namespace

std::string statusLine(std::int64_t microseconds)
{
    const std::int64_t hundredths = std::min(microseconds / microsecondsPerHundredth, latest);
    const auto part = [hundredths](std::int64_t unit, std::int64_t count) {
        return static_cast<int>(hundredths / unit % count);
    };
    std::array<char, 32> text{};
    const int length = std::snprintf(text.data(), text.size(), "time=%02d:%02d:%02d.%02d\n",
        part(360000, 100), part(6000, 60), part(100, 60), part(1, 100));
    return {text.data(), static_cast<std::size_t>(length)};
}

std::string ProgressReader::read(const std::string& piece)
{
    m_rest += piece;
    std::string lines;
    while (const auto line = nextLine(m_rest))
        lines += takeLine(*line);
    return lines;
}

std::string ProgressReader::takeLine(const std::string& line)
{
    if (startsWith(line, timeKey))
        m_microseconds = wholeNumber(line.substr(timeKey.size()));
    if (!startsWith(line, blockEnd) || !m_microseconds)
        return {};
    const std::string status = statusLine(*m_microseconds);
    m_microseconds.reset();
    return status;
}

std::string ComplaintReader::read(const std::string& piece)
{
    m_rest += piece;
    std::string lines;
    while (const auto line = nextLine(m_rest)) {
        if (!line->empty())
            lines += withoutStatusMarks(*line) + "\n";
    }
    return lines;
}
