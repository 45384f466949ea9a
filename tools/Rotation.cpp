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
constexpr double tolerance = 0.001; // tolerates rounding errors of right angles
constexpr double halfTurn = 180;
constexpr int fullTurn = 360;

/// Reads rows such as "00000001:       -65536           0           0". The number before the colon is the
/// row number.
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

/// The four numbers that decoders use.
std::optional<DisplayMatrix> rawMatrix(std::string_view text)
{
    const std::vector<std::int64_t> m = numbersOf(text);
    if (m.size() != numbersInMatrix)
        return std::nullopt;
    const auto unit = [&m](std::size_t place) { return static_cast<double>(m[place]) / one; };
    return DisplayMatrix{unit(0), unit(1), unit(3), unit(4)};
}

} // namespace

bool keepsShapeAndSize(const DisplayMatrix& m)
{
    return isNear(std::hypot(m.a, m.b), 1) && isNear(std::hypot(m.c, m.d), 1)
        && isNear(m.a * m.c + m.b * m.d, 0);
}

std::optional<DisplayMatrix> withoutScale(const DisplayMatrix& m)
{
    const double width = std::hypot(m.a, m.b);
    const double height = std::hypot(m.c, m.d);
    if (width == 0 || height == 0)
        return std::nullopt;
    const DisplayMatrix unscaled = {m.a / width, m.b / width, m.c / height, m.d / height};
    return keepsShapeAndSize(unscaled) ? std::optional(unscaled) : std::nullopt;
}

std::optional<DisplayMatrix> parseDisplayMatrix(std::string_view text)
{
    const auto matrix = rawMatrix(text);
    return matrix && keepsShapeAndSize(*matrix) ? matrix : std::nullopt;
}

std::optional<DisplayMatrix> parseDecodedMatrix(std::string_view text)
{
    const auto matrix = rawMatrix(text);
    return matrix ? withoutScale(*matrix) : std::nullopt;
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

bool areNearlyEqual(const DisplayMatrix& left, const DisplayMatrix& right)
{
    return isNear(left.a, right.a) && isNear(left.b, right.b) && isNear(left.c, right.c)
        && isNear(left.d, right.d);
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
