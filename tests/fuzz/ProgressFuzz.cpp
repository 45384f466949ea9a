// SPDX-License-Identifier: MIT
// Input: any bytes as a chunk of the encoder's standard error. The first time stamp counts, and the program
// stops only if there is "time=" without a valid time stamp.
#include "export/Progress.h"
#include "tests/fuzz/Verify.h"

#include <cmath>
#include <limits>
#include <optional>

namespace tarnwell::test
{

namespace
{

/// The code point at `place`, and in `size` its number of bytes; no value if the bytes are not UTF-8.
std::optional<std::uint32_t> codePoint(std::string_view text, std::size_t place, std::size_t& size)
{
    const auto first = static_cast<unsigned char>(text[place]);
    size = first < 0x80 ? 1 : first >> 5U == 0x6 ? 2 : first >> 4U == 0xE ? 3 : first >> 3U == 0x1E ? 4 : 0;
    if (size == 0 || size > text.size() - place)
        return std::nullopt;
    std::uint32_t point = size == 1 ? first : first & (0x7FU >> size);
    for (std::size_t next = 1; next < size; ++next) {
        const auto byte = static_cast<unsigned char>(text[place + next]);
        if (byte >> 6U != 0x2)
            return std::nullopt;
        point = point << 6U | (byte & 0x3FU);
    }
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (point < least[size] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        return std::nullopt;
    return point;
}

bool isUtf8(std::string_view text)
{
    std::size_t size = 0;
    for (std::size_t place = 0; place < text.size(); place += size) {
        if (!codePoint(text, place, size))
            return false;
    }
    return true;
}

bool isEndOfLine(std::uint32_t point)
{
    return (point >= 0xA && point <= 0xD) || point == 0x85 || point == 0x2028 || point == 0x2029;
}

bool isNumber(std::string_view text, std::size_t place)
{
    const auto isDigit
        = [text](std::size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
    return isDigit(place) && isDigit(place + 1);
}

double number(std::string_view text, std::size_t place)
{
    return (text[place] - '0') * 10 + (text[place + 1] - '0');
}

/// The offsets of a time stamp and of its hundredths.
struct Stamp {
    std::size_t place;
    std::size_t hundredths;
};

std::optional<Stamp> firstStamp(std::string_view text)
{
    constexpr std::size_t clockSize = 8;
    for (std::size_t place = 0; place + clockSize < text.size(); ++place) {
        if (!isNumber(text, place) || text[place + 2] != ':' || !isNumber(text, place + 3)
            || text[place + 5] != ':' || !isNumber(text, place + 6))
            continue;
        std::size_t size = 0;
        const auto separator = codePoint(text, place + clockSize, size);
        if (separator && !isEndOfLine(*separator) && isNumber(text, place + clockSize + size))
            return Stamp{place, place + clockSize + size};
    }
    return std::nullopt;
}

void checkPercent(double seconds, Choices& choices)
{
    constexpr double durations[] = {8, 0.1, 0, 1e-300, 123456.789};
    const double percent = percentOf(seconds, durations[choices.below(5)]);
    const std::string line = percentLine(percent);
    const std::string begin = "Percent : ";
    verify(line.compare(0, begin.size(), begin) == 0 && line.find('\n') == std::string::npos,
        "one line is printed");
    verify(!std::isfinite(percent) || std::strtod(line.c_str() + begin.size(), nullptr) == percent,
        "the line reads back as the same number");
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell;
    using namespace tarnwell::test;
    const std::string chunk = bytesOf(data, size);
    if (!isUtf8(chunk) || chunk.find("time=") == std::string::npos) {
        verify(!elapsedSecondsFromChunk(chunk), "only UTF-8 with \"time=\" contains a time");
        return 0;
    }
    const auto stamp = firstStamp(chunk);
    // A fatal rule, which the death tests of Progress cover.
    if (!stamp || chunk[stamp->hundredths - 1] != '.')
        return 0;
    const auto elapsed = elapsedSecondsFromChunk(chunk);
    const double expected = number(chunk, stamp->place) * 3600
        + (number(chunk, stamp->place + 3) * 60
            + (number(chunk, stamp->hundredths) / 100 + number(chunk, stamp->place + 6)));
    verify(elapsed == expected, "the first time stamp counts");
    Choices choices(chunk);
    checkPercent(*elapsed, choices);
    return 0;
}
