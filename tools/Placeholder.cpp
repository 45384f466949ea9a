// SPDX-License-Identifier: MIT
#include "tools/Placeholder.h"

#include "tools/JpegCheck.h"
#include "tools/StruckOutFilm.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <vector>

namespace
{

constexpr int largestSide = 65500; // limit of decoders; the format allows 65535
constexpr int quality = 90; // no visible noise at the edges of the drawing
constexpr JSAMPLE ground = 96;
constexpr JSAMPLE drawing = 200;

/// The side, in pixels, of the squares in which the picture is drawn: several in a large picture. They are
/// invisible, because the window scales the picture down.
int sideOfSquare(int width, int height)
{
    constexpr int finestSide = 2048;
    return 1 + std::max(width, height) / finestSide;
}

void paintLine(std::vector<JSAMPLE>& line, const StruckOutFilm& film, int y, int square)
{
    std::fill(line.begin(), line.end(), ground);
    if (film.isOutside(y))
        return;
    const int width = static_cast<int>(line.size());
    for (int x = 0; x < width; x += square) {
        const double share = film.shareAt(x + square / 2, y);
        const auto grey = static_cast<JSAMPLE>(std::lround(ground + share * (drawing - ground)));
        std::fill_n(line.begin() + x, std::min(square, width - x), grey);
    }
}

std::string encoded(int width, int height)
{
    jpeg_error_mgr errors = {};
    jpeg_compress_struct encoder = {};
    encoder.err = jpeg_std_error(&errors); // if memory runs out, the only error, the library ends the program
    jpeg_create_compress(&encoder);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = static_cast<JDIMENSION>(width);
    encoder.image_height = static_cast<JDIMENSION>(height);
    encoder.input_components = 1;
    encoder.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, quality, TRUE);
    jpeg_start_compress(&encoder, TRUE);
    const StruckOutFilm film(width, height);
    const int square = sideOfSquare(width, height);
    std::vector<JSAMPLE> line(encoder.image_width);
    while (encoder.next_scanline < encoder.image_height) {
        const int y = static_cast<int>(encoder.next_scanline);
        if (y % square == 0)
            paintLine(line, film, y + square / 2, square);
        JSAMPROW row = line.data();
        jpeg_write_scanlines(&encoder, &row, 1);
    }
    jpeg_finish_compress(&encoder);
    std::string picture(reinterpret_cast<const char*>(bytes), size);
    jpeg_destroy_compress(&encoder);
    std::free(bytes);
    return picture;
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
    return encoded(width, height);
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
    const bool isQuarterTurned = video.decoded && rotationTag(*video.decoded) % 180 == 90;
    return isQuarterTurned ? placeholderPicture(height, width) : placeholderPicture(width, height);
}
