// SPDX-License-Identifier: MIT
#include "tools/Placeholder.h"

#include "tools/JpegCheck.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace
{

constexpr int largestSide = 65500; // limit of decoders; the format allows 65535
constexpr int blockSide = 8;
constexpr std::size_t tableSize = 64;

void appendShort(std::string& bytes, int number)
{
    bytes += static_cast<char>(static_cast<unsigned>(number) >> 8U & 0xFFU);
    bytes += static_cast<char>(static_cast<unsigned>(number) & 0xFFU);
}

void appendSegment(std::string& bytes, char marker, const std::string& content)
{
    bytes += '\xFF';
    bytes += marker;
    appendShort(bytes, static_cast<int>(content.size()) + 2);
    bytes += content;
}

// A Huffman table with one code, a single 0 bit, for the symbol 0: no difference from the mean of the last
// block (DC), end of block (AC).
std::string codeTable(char kind)
{
    std::string table(1, kind);
    table += '\x01';
    table.append(15, '\0');
    table += '\0';
    return table;
}

std::string frameHeader(int width, int height)
{
    std::string frame(1, '\x08');
    appendShort(frame, height);
    appendShort(frame, width);
    return frame + std::string("\x01\x01\x11\x00", 4);
}

constexpr int longestStretchedSide = 8192; // as for the stills of ffmpeg, see Job.cpp

/// The length of a side after its pixels become square. `aspect` is the length of a pixel along this side
/// divided by its length along the other side. 0 if the result exceeds longestStretchedSide.
int stretched(int side, double aspect)
{
    const double length = std::round(side * aspect);
    return length <= longestStretchedSide ? static_cast<int>(length) : 0;
}

} // namespace

std::string placeholderPicture(int width, int height)
{
    width = std::clamp(width, 1, largestSide);
    height = std::clamp(height, 1, largestSide);
    const double excess = static_cast<double>(width) * height / static_cast<double>(mostStillPixels);
    if (excess > 1) {
        width = std::max(1, static_cast<int>(width / std::sqrt(excess)));
        height = std::max(1, static_cast<int>(height / std::sqrt(excess)));
    }
    std::string picture = "\xFF\xD8";
    appendSegment(picture, '\xDB', std::string(1, '\0') + std::string(tableSize, '\1'));
    appendSegment(picture, '\xC0', frameHeader(width, height));
    appendSegment(picture, '\xC4', codeTable('\x00'));
    appendSegment(picture, '\xC4', codeTable('\x10'));
    appendSegment(picture, '\xDA', std::string("\x01\x01\x00\x00\x3F\x00", 6));
    // Two 0 bits per block; the last byte is padded with ones.
    const auto across = static_cast<std::uint64_t>((width + blockSide - 1) / blockSide);
    const auto down = static_cast<std::uint64_t>((height + blockSide - 1) / blockSide);
    const std::uint64_t bits = 2 * across * down;
    picture.append(bits / 8, '\0');
    if (bits % 8 != 0)
        picture += static_cast<char>(0xFFU >> bits % 8);
    return picture + "\xFF\xD9";
}

std::string placeholderOf(const VideoFacts& video)
{
    int width = video.width;
    int height = video.height;
    const double aspect = video.pixelAspect;
    int& longer = aspect > 1 ? width : height;
    int& shorter = aspect > 1 ? height : width;
    const double factor = aspect > 1 ? aspect : 1 / aspect;
    if (const int length = stretched(longer, factor))
        longer = length;
    else
        shorter = static_cast<int>(std::round(shorter / factor));
    const bool isOnItsSide = video.decoded && rotationTag(*video.decoded) % 180 == 90;
    return isOnItsSide ? placeholderPicture(height, width) : placeholderPicture(width, height);
}
