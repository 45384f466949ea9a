// SPDX-License-Identifier: MIT
#include "tests/tools/TruthPictures.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <sstream>
#include <utility>

namespace tarnwell::test
{

namespace
{

constexpr int channels = 3;
constexpr double farthest = 255;

std::size_t offsetOf(const Picture& picture, int x, int y)
{
    return static_cast<std::size_t>(channels) * static_cast<std::size_t>(y * picture.width + x);
}

Picture blank(int width, int height)
{
    return {width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(channels * width * height))};
}

void copyPixel(const Picture& from, int x, int y, Picture& to, int newX, int newY)
{
    const auto source = from.pixels.begin() + static_cast<std::ptrdiff_t>(offsetOf(from, x, y));
    std::copy_n(source, channels, to.pixels.begin() + static_cast<std::ptrdiff_t>(offsetOf(to, newX, newY)));
}

} // namespace

Matrix combined(const Matrix& first, const Matrix& second)
{
    return {first.a * second.a + first.b * second.c, first.a * second.b + first.b * second.d,
        first.c * second.a + first.d * second.c, first.c * second.b + first.d * second.d};
}

Matrix quarterTurnsLeft(int count)
{
    Matrix matrix;
    for (int turn = 0; turn < count; ++turn)
        matrix = combined(matrix, {0, -1, 1, 0});
    return matrix;
}

bool isMirrored(const Matrix& matrix)
{
    return matrix.a * matrix.d - matrix.b * matrix.c < 0;
}

Picture parsePixmap(const std::string& bytes)
{
    std::istringstream text(bytes);
    std::string kind;
    Picture picture;
    int brightest = 0;
    text >> kind >> picture.width >> picture.height >> brightest;
    if (!text || kind != "P6" || picture.width <= 0 || picture.height <= 0 || brightest != 255)
        return {};
    // One white space character separates the numbers and the pixels.
    const auto begin = static_cast<std::size_t>(text.tellg()) + 1;
    const auto size = static_cast<std::size_t>(channels * picture.width * picture.height);
    if (bytes.size() != begin + size)
        return {};
    picture.pixels.assign(bytes.begin() + static_cast<std::ptrdiff_t>(begin), bytes.end());
    return picture;
}

Picture shownBy(const Matrix& matrix, const Picture& coded)
{
    if (coded.isEmpty())
        return {};
    const int right = coded.width - 1;
    const int bottom = coded.height - 1;
    const auto [left, farX] = std::minmax({0, matrix.a * right + matrix.c * bottom});
    const auto [top, farY] = std::minmax({0, matrix.b * right + matrix.d * bottom});
    Picture shown = blank(farX - left + 1, farY - top + 1);
    for (int y = 0; y < coded.height; ++y) {
        for (int x = 0; x < coded.width; ++x)
            copyPixel(
                coded, x, y, shown, matrix.a * x + matrix.c * y - left, matrix.b * x + matrix.d * y - top);
    }
    return shown;
}

Picture turnedLeft(const Picture& picture)
{
    Picture turned = blank(picture.height, picture.width);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x)
            copyPixel(picture, x, y, turned, y, picture.width - 1 - x);
    }
    return turned;
}

Picture mirrored(const Picture& picture, bool vertically, bool horizontally)
{
    Picture result = blank(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x)
            copyPixel(picture, x, y, result, horizontally ? picture.width - 1 - x : x,
                vertically ? picture.height - 1 - y : y);
    }
    return result;
}

bool haveSameSize(const Picture& left, const Picture& right, int spare)
{
    return std::abs(left.width - right.width) <= spare && std::abs(left.height - right.height) <= spare;
}

double meanDifference(const Picture& left, const Picture& right)
{
    if (left.isEmpty() || right.isEmpty() || !haveSameSize(left, right, 1))
        return farthest;
    const int width = std::min(left.width, right.width);
    const int height = std::min(left.height, right.height);
    std::array<std::int64_t, channels> sums = {};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::size_t here = offsetOf(left, x, y);
            const std::size_t there = offsetOf(right, x, y);
            for (std::size_t channel = 0; channel < channels; ++channel)
                sums[channel] += std::abs(left.pixels[here + channel] - right.pixels[there + channel]);
        }
    }
    return static_cast<double>(*std::max_element(sums.begin(), sums.end())) / (width * height);
}

} // namespace tarnwell::test
