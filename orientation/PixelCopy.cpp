// SPDX-License-Identifier: MIT
#include "orientation/PixelCopy.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tarnwell
{

namespace
{

using Pixel = std::uint32_t;

/// The pixels of a picture; `stride` is the distance of two lines in pixels.
template <typename P>
struct Pixels {
    P* first = nullptr;
    qsizetype stride = 0;
    int width = 0;
    int height = 0;

    P* line(int y) const { return first + stride * y; }
};

Pixels<const Pixel> pixelsOf(const QImage& picture)
{
    return {reinterpret_cast<const Pixel*>(picture.constBits()),
        picture.bytesPerLine() / static_cast<qsizetype>(sizeof(Pixel)), picture.width(), picture.height()};
}

Pixels<Pixel> pixelsOf(QImage& picture)
{
    return {reinterpret_cast<Pixel*>(picture.bits()),
        picture.bytesPerLine() / static_cast<qsizetype>(sizeof(Pixel)), picture.width(), picture.height()};
}

void copyLine(const Pixel* from, int width, bool isReversed, Pixel* to)
{
    if (isReversed)
        std::reverse_copy(from, from + width, to);
    else
        std::memcpy(to, from, static_cast<std::size_t>(width) * sizeof(Pixel));
}

// A square of that many pixels fits the innermost cache both as it is read and as it is written; one line of
// it is as long as memory is moved at a time.
constexpr int tile = 16;

/// Line y of the target is column y of the source, or counted from the other end; likewise the places in it.
struct Transposition {
    bool fromRight = false;
    bool fromBottom = false;
};

// As many pixels as every processor moves at once.
constexpr int lanes = 4;
using Four = Pixel __attribute__((vector_size(lanes * sizeof(Pixel))));

Four load(const Pixel* place)
{
    Four pixels;
    std::memcpy(&pixels, place, sizeof pixels);
    return pixels;
}

void store(const Four& pixels, Pixel* place)
{
    std::memcpy(place, &pixels, sizeof pixels);
}

/// Four by four pixels: columns become lines. `step` leads from one line of the source to the next that is
/// taken, `stride` from one line of the target to the next that is written.
void copyFour(const Pixel* source, qsizetype step, Pixel* target, qsizetype stride)
{
    const Four a = load(source);
    const Four b = load(source + step);
    const Four c = load(source + 2 * step);
    const Four d = load(source + 3 * step);
    const Four abLeft = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const Four cdLeft = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const Four abRight = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Four cdRight = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    store(__builtin_shufflevector(abLeft, cdLeft, 0, 1, 4, 5), target);
    store(__builtin_shufflevector(abLeft, cdLeft, 2, 3, 6, 7), target + stride);
    store(__builtin_shufflevector(abRight, cdRight, 0, 1, 4, 5), target + 2 * stride);
    store(__builtin_shufflevector(abRight, cdRight, 2, 3, 6, 7), target + 3 * stride);
}

void copyTile(const Pixels<const Pixel>& from, Transposition way, const Pixels<Pixel>& to, int left, int top)
{
    const int right = std::min(left + tile, to.width);
    const int bottom = std::min(top + tile, to.height);
    const qsizetype step = way.fromBottom ? -from.stride : from.stride;
    const auto sourceOf = [&](int x, int y) {
        return from.line(way.fromBottom ? from.height - 1 - x : x) + (way.fromRight ? from.width - 1 - y : y);
    };
    if (right - left == tile && bottom - top == tile) {
        for (int y = top; y < bottom; y += lanes) {
            for (int x = left; x < right; x += lanes) {
                if (way.fromRight)
                    copyFour(sourceOf(x, y + lanes - 1), step, to.line(y + lanes - 1) + x, -to.stride);
                else
                    copyFour(sourceOf(x, y), step, to.line(y) + x, to.stride);
            }
        }
        return;
    }
    for (int y = top; y < bottom; ++y) {
        const Pixel* source = sourceOf(left, y);
        for (int x = left; x < right; ++x, source += step)
            to.line(y)[x] = *source;
    }
}

void copyTransposed(const Pixels<const Pixel>& from, Transposition way, const Pixels<Pixel>& to)
{
    for (int top = 0; top < to.height; top += tile) {
        for (int left = 0; left < to.width; left += tile)
            copyTile(from, way, to, left, top);
    }
}

} // namespace

void copyTurned(const QImage& source, int quarterTurns, QImage& target)
{
    switch (quarterTurns) {
    case 0:
        copyMirrored(source, false, false, target);
        break;
    case 1:
        copyTransposed(pixelsOf(source), {true, false}, pixelsOf(target));
        break;
    case 2:
        copyMirrored(source, true, true, target);
        break;
    default:
        copyTransposed(pixelsOf(source), {false, true}, pixelsOf(target));
    }
}

void copyMirrored(const QImage& source, bool horizontal, bool vertical, QImage& target)
{
    const auto from = pixelsOf(source);
    const auto to = pixelsOf(target);
    for (int y = 0; y < to.height; ++y)
        copyLine(from.line(vertical ? from.height - 1 - y : y), from.width, horizontal, to.line(y));
}

} // namespace tarnwell
