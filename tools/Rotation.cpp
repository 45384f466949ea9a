// SPDX-License-Identifier: MIT
#include "tools/Rotation.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace
{

constexpr double one = 65536; // 16.16 fixed point
constexpr std::size_t numbersInMatrix = 9;
constexpr double tolerance = 0.001; // what rounding leaves of a right angle
constexpr double halfTurn = 180;
constexpr int fullTurn = 360;

// Rows look like "00000001:       -65536           0           0"; what stands before the colon counts them.
std::vector<std::int64_t> numbersOf(std::string_view text)
{
    std::vector<std::int64_t> numbers;
    while (!text.empty()) {
        const auto end = text.find_first_of(" \n");
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (word.empty() || word.back() == ':')
            continue;
        std::int64_t number = 0;
        const auto parsed = std::from_chars(word.data(), word.data() + word.size(), number);
        if (parsed.ec != std::errc() || parsed.ptr != word.data() + word.size())
            return {};
        numbers.push_back(number);
    }
    return numbers;
}

bool isNear(double left, double right)
{
    return std::abs(left - right) < tolerance;
}

bool keepsShapeAndSize(const DisplayMatrix& m)
{
    return isNear(std::hypot(m.a, m.b), 1) && isNear(std::hypot(m.c, m.d), 1)
        && isNear(m.a * m.c + m.b * m.d, 0);
}

/// The four of the nine numbers that decoders look at.
std::optional<DisplayMatrix> rawMatrix(std::string_view text)
{
    const std::vector<std::int64_t> m = numbersOf(text);
    if (m.size() != numbersInMatrix)
        return std::nullopt;
    const auto unit = [&m](std::size_t place) { return static_cast<double>(m[place]) / one; };
    return DisplayMatrix{unit(0), unit(1), unit(3), unit(4)};
}

std::optional<DisplayMatrix> ifItKeepsShapeAndSize(const std::optional<DisplayMatrix>& matrix)
{
    return matrix && keepsShapeAndSize(*matrix) ? matrix : std::nullopt;
}

} // namespace

std::optional<DisplayMatrix> parseDisplayMatrix(std::string_view text)
{
    return ifItKeepsShapeAndSize(rawMatrix(text));
}

std::optional<DisplayMatrix> parseDecodedMatrix(std::string_view text)
{
    const auto m = rawMatrix(text);
    if (!m)
        return std::nullopt;
    // Of an empty one nothing is a number, and so nothing near what is asked for.
    const double width = std::hypot(m->a, m->b);
    const double height = std::hypot(m->c, m->d);
    return ifItKeepsShapeAndSize(DisplayMatrix{m->a / width, m->b / width, m->c / height, m->d / height});
}

DisplayMatrix turnedLeft(double degrees)
{
    const double angle = std::fmod(degrees, fullTurn) * std::numbers::pi / halfTurn;
    return {std::cos(angle), -std::sin(angle), std::sin(angle), std::cos(angle)};
}

DisplayMatrix combined(const DisplayMatrix& first, const DisplayMatrix& second)
{
    return {first.a * second.a + first.b * second.c, first.a * second.b + first.b * second.d,
        first.c * second.a + first.d * second.c, first.c * second.b + first.d * second.d};
}

bool isMirrored(const DisplayMatrix& matrix)
{
    return matrix.a * matrix.d - matrix.b * matrix.c < 0;
}

int rotationTag(const DisplayMatrix& matrix)
{
    const double clockwise = std::atan2(matrix.b, matrix.a) * halfTurn / std::numbers::pi;
    const int degrees = static_cast<int>(std::lround(clockwise));
    return (degrees % fullTurn + fullTurn) % fullTurn;
}
