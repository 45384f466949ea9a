// SPDX-License-Identifier: MIT
#include "tools/TrackMatrix.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using Offset = std::int64_t;

constexpr Offset shortHeader = 8;
constexpr Offset longHeader = 16;
constexpr std::uint32_t sizeFollows = 1;
constexpr std::uint32_t reachesToTheEnd = 0;

// Within a track header of version 0: matrix, then width and height. Version 1 has three longer times before
// it.
constexpr Offset matrixOffset = 40;
constexpr Offset longerTimes = 12;
constexpr Offset matrixSize = 36;
// Within a handler box: four bytes of version and four unused ones, then the kind.
constexpr Offset handlerKindOffset = 8;

struct Box {
    std::string type;
    Offset content = 0; // where it begins in the file
    Offset end = 0;
};

std::string bytesAt(int descriptor, Offset offset, std::size_t count)
{
    std::string bytes(count, '\0');
    const ssize_t got = ::pread(descriptor, bytes.data(), count, offset);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

std::uint64_t bigEndian(const std::string& bytes)
{
    std::uint64_t number = 0;
    for (const char byte : bytes)
        number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

/// The box at `offset`; one whose end does not lie behind its content is broken, or not there.
Box boxAt(int descriptor, Offset offset, Offset end)
{
    const std::string header = bytesAt(descriptor, offset, shortHeader);
    if (header.size() < static_cast<std::size_t>(shortHeader))
        return {};
    Box box{header.substr(4), offset + shortHeader, 0};
    std::uint64_t size = bigEndian(header.substr(0, 4));
    if (size == sizeFollows) {
        size = bigEndian(bytesAt(descriptor, box.content, longHeader - shortHeader));
        box.content = offset + longHeader;
    }
    if (size == reachesToTheEnd)
        box.end = end;
    else if (size <= static_cast<std::uint64_t>(end - offset))
        box.end = offset + static_cast<Offset>(size);
    return box;
}

/// Calls `visit` for each box between the offsets; whether they are whole boxes up to the end.
bool forEachBox(int descriptor, Offset begin, Offset end, const std::function<void(const Box&)>& visit)
{
    while (begin < end) {
        const Box box = boxAt(descriptor, begin, end);
        if (box.end < box.content || box.content == 0)
            return false;
        visit(box);
        begin = box.end;
    }
    return true;
}

/// The first box of that type between the offsets.
Box findBox(int descriptor, const Box& parent, const std::string& type)
{
    Box found;
    forEachBox(descriptor, parent.content, parent.end, [&](const Box& box) {
        if (found.content == 0 && box.type == type)
            found = box;
    });
    return found;
}

Box wholeFile(int descriptor)
{
    struct stat status = {};
    return {"", 0, ::fstat(descriptor, &status) == 0 ? static_cast<Offset>(status.st_size) : 0};
}

bool isVideoTrack(int descriptor, const Box& track)
{
    const Box handler = findBox(descriptor, findBox(descriptor, track, "mdia"), "hdlr");
    return handler.content != 0 && bytesAt(descriptor, handler.content + handlerKindOffset, 4) == "vide";
}

/// The box that describes the tracks.
Box movieOf(int descriptor)
{
    return findBox(descriptor, wholeFile(descriptor), "moov");
}

/// How many there are.
int forEachVideoTrack(int descriptor, const Box& movie, const std::function<void(const Box&)>& visit)
{
    int count = 0;
    forEachBox(descriptor, movie.content, movie.end, [&](const Box& box) {
        if (box.type != "trak" || !isVideoTrack(descriptor, box))
            return;
        ++count;
        visit(box);
    });
    return count;
}

void appendFixed(std::string& bytes, double value, int fractionBits)
{
    const auto number = static_cast<std::uint32_t>(std::lround(std::ldexp(value, fractionBits)));
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> static_cast<unsigned>(shift) & 0xFFU);
}

/// The matrix as a track header holds it, with the shift that brings the turned picture back to the origin.
std::string matrixBytes(const DisplayMatrix& m, double width, double height)
{
    constexpr int fixed = 16;
    constexpr int perspective = 30;
    const double left = std::min({0.0, m.a * width, m.c * height, m.a * width + m.c * height});
    const double top = std::min({0.0, m.b * width, m.d * height, m.b * width + m.d * height});
    std::string bytes;
    const std::array<double, 6> rows = {m.a, m.b, m.c, m.d, -left, -top};
    for (std::size_t row = 0; row < 3; ++row) {
        appendFixed(bytes, rows[2 * row], fixed);
        appendFixed(bytes, rows[2 * row + 1], fixed);
        appendFixed(bytes, row == 2 ? 1 : 0, perspective);
    }
    return bytes;
}

/// Where the matrix begins in a header of a track, or of the movie where `shift` says how much earlier that
/// has it.
Offset matrixPlace(int descriptor, const Box& header, Offset shift = 0)
{
    const bool isLong = bytesAt(descriptor, header.content, 1) == std::string(1, '\1');
    return header.content + matrixOffset - shift + (isLong ? longerTimes : 0);
}

/// Both columns that turn and mirror, in the order a, b, c, d.
std::array<std::int32_t, 4> matrixAt(int descriptor, Offset place)
{
    const std::string bytes = bytesAt(descriptor, place, matrixSize);
    std::array<std::int32_t, 4> numbers = {};
    constexpr std::array<std::size_t, 4> places = {0, 4, 12, 16};
    for (std::size_t each = 0; each < places.size() && bytes.size() == matrixSize; ++each)
        numbers[each] = static_cast<std::int32_t>(bigEndian(bytes.substr(places[each], 4)));
    return numbers;
}

bool isQuarterTurn(const std::array<std::int32_t, 4>& m)
{
    constexpr std::int32_t one = 65536;
    const bool isUpright = m[1] == 0 && (m[0] == one || m[0] == -one);
    const bool isOnItsSide = m[0] == 0 && (m[1] == one || m[1] == -one);
    return (isUpright || isOnItsSide) && m[3] == m[0] && m[2] == -m[1];
}

bool writeMatrixOfTrack(int descriptor, const Box& track, const DisplayMatrix& matrix)
{
    const Box header = findBox(descriptor, track, "tkhd");
    if (header.content == 0)
        return false;
    const Offset place = matrixPlace(descriptor, header);
    const std::string size = bytesAt(descriptor, place + matrixSize, 8);
    if (place + matrixSize + 8 > header.end || size.size() != 8)
        return false;
    constexpr double one = 65536;
    const std::string bytes = matrixBytes(matrix, static_cast<double>(bigEndian(size.substr(0, 4))) / one,
        static_cast<double>(bigEndian(size.substr(4))) / one);
    return ::pwrite(descriptor, bytes.data(), bytes.size(), place) == matrixSize;
}

} // namespace

bool isCompleteMovie(int descriptor)
{
    const Box file = wholeFile(descriptor);
    const int videos = forEachVideoTrack(descriptor, movieOf(descriptor), [](const Box&) {});
    return videos > 0 && forEachBox(descriptor, file.content, file.end, [](const Box&) {});
}

bool isOnlyTurned(int descriptor)
{
    constexpr Offset earlier = 4; // in the movie's header than in a track's
    const Box movie = movieOf(descriptor);
    const Box header = findBox(descriptor, movie, "mvhd");
    const auto ofMovie = matrixAt(descriptor, matrixPlace(descriptor, header, earlier));
    if (header.content == 0 || ofMovie != std::array<std::int32_t, 4>{65536, 0, 0, 65536})
        return false;
    bool areTurned = true;
    const int videos = forEachVideoTrack(descriptor, movie, [&](const Box& track) {
        const Box trackHeader = findBox(descriptor, track, "tkhd");
        areTurned = areTurned && trackHeader.content != 0
            && isQuarterTurn(matrixAt(descriptor, matrixPlace(descriptor, trackHeader)));
    });
    return videos > 0 && areTurned;
}

bool writeTrackMatrix(int descriptor, const DisplayMatrix& matrix)
{
    bool areWritten = true;
    const int videos = forEachVideoTrack(descriptor, movieOf(descriptor),
        [&](const Box& track) { areWritten = writeMatrixOfTrack(descriptor, track, matrix) && areWritten; });
    return videos > 0 && areWritten;
}
