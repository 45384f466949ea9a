// SPDX-License-Identifier: MIT
#include "tests/tools/MatrixText.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace tarnwell::test
{

std::vector<long long> matrixNumbers(double a, double b, double c, double d)
{
    const auto fixed = [](double value) { return std::llround(value * 65536); };
    return {fixed(a), fixed(b), 0, fixed(c), fixed(d), 0, 0, 0, 1073741824};
}

std::string textOfNumbers(const std::vector<long long>& numbers)
{
    std::string text = "\n";
    for (std::size_t row = 0; row < 3; ++row) {
        std::array<char, 128> line{};
        std::snprintf(line.data(), line.size(), "%08zu: %11lld %11lld %11lld\n", row, numbers[3 * row],
            numbers[3 * row + 1], numbers[3 * row + 2]);
        text += line.data();
    }
    return text;
}

std::string matrixText(double a, double b, double c, double d)
{
    return textOfNumbers(matrixNumbers(a, b, c, d));
}

} // namespace tarnwell::test
