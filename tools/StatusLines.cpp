// SPDX-License-Identifier: MIT
#include "tools/StatusLines.h"

#include "tools/WholeNumber.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

namespace
{

const std::string timeKey = "out_time_us=";
const std::string blockEnd = "progress=";

// Limits the memory for text without an end of line. A line with its end fits one atomic write to a pipe.
constexpr std::size_t longestLine = 4095;

constexpr std::int64_t microsecondsPerHundredth = 10000;
constexpr std::int64_t latest = 35999999; // 99:59:59.99, in hundredths

/// Removes the complete lines from `rest` and returns them without their ends. Splits text that exceeds the
/// longest line.
std::vector<std::string> takeLines(std::string& rest)
{
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (true) {
        const auto end = rest.find_first_of("\r\n", begin);
        const std::size_t length = (end == std::string::npos ? rest.size() : end) - begin;
        if (length >= longestLine) {
            lines.push_back(rest.substr(begin, longestLine));
            begin += longestLine;
        } else if (end != std::string::npos) {
            lines.push_back(rest.substr(begin, length));
            begin = end + 1;
        } else {
            rest.erase(0, begin);
            return lines;
        }
    }
}

bool isTimeStampAt(const std::string& line, std::size_t place)
{
    const std::string form = "00:00:00";
    if (line.size() - place < form.size())
        return false;
    return std::equal(form.begin(), form.end(), line.begin() + static_cast<std::ptrdiff_t>(place),
        [](char wanted, char found) {
            return wanted == '0' ? found >= '0' && found <= '9' : found == wanted;
        });
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
    for (const auto& line : takeLines(m_rest))
        lines += takeLine(line);
    return lines;
}

std::string ProgressReader::takeLine(const std::string& line)
{
    if (line.starts_with(timeKey))
        m_microseconds = wholeNumber(line.substr(timeKey.size()));
    if (!line.starts_with(blockEnd) || !m_microseconds || *m_microseconds < 0)
        return {};
    const std::string status = statusLine(*m_microseconds);
    m_microseconds.reset();
    return status;
}

std::string withoutStatusMarks(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return byte < ' ' || byte > '~'; }, '?');
    for (auto mark = text.find(statusMark); mark != std::string::npos; mark = text.find(statusMark))
        text[mark + statusMark.size() - 1] = ':';
    // The window parses the first time stamp in each chunk that it reads, even one before "time=".
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (isTimeStampAt(text, place))
            text[place + 2] = '.';
    }
    return text;
}

bool namesReadError(const std::string& messages)
{
    constexpr std::array readErrors = {EIO, ENXIO, ENODEV, ENOTCONN, ETIMEDOUT, ESTALE, EREMOTEIO};
    return std::any_of(readErrors.begin(), readErrors.end(),
        [&messages](int error) { return messages.find(std::strerror(error)) != std::string::npos; });
}

std::string ErrorMessageReader::read(const std::string& piece)
{
    m_rest += piece;
    std::string lines;
    for (const auto& line : takeLines(m_rest)) {
        if (!line.empty())
            lines += withoutStatusMarks(line) + "\n";
    }
    return lines;
}

std::string ErrorMessageReader::rest()
{
    return m_rest.empty() ? std::string() : withoutStatusMarks(std::exchange(m_rest, {})) + "\n";
}
