// SPDX-License-Identifier: MIT
// Input: any bytes as a movie. creator accepts it as complete only if valid boxes fill the file, and writes
// only the matrices of track headers. The same bytes as a sample: an orientation message in front of it is
// found.
#include "tests/fuzz/MemoryFile.h"
#include "tests/fuzz/Verify.h"
#include "tools/OrientationMessage.h"
#include "tools/TrackMatrix.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr std::size_t matrixSize = 36;

std::uint64_t numberAt(const std::string& bytes, std::size_t place, std::size_t count)
{
    std::uint64_t number = 0;
    for (std::size_t byte = place; byte < place + count && byte < bytes.size(); ++byte)
        number = number << 8U | static_cast<unsigned char>(bytes[byte]);
    return number;
}

/// A box of an MP4 file: the offsets of its content and its end.
struct Box {
    std::string type;
    std::size_t content;
    std::size_t end;
};

/// The boxes up to the first invalid one; `areWhole` is set if all are valid. A size of 0 extends to `end`.
std::vector<Box> boxesIn(const std::string& bytes, std::size_t begin, std::size_t end, bool& areWhole)
{
    std::vector<Box> boxes;
    for (areWhole = true; begin < end;) {
        std::uint64_t size = numberAt(bytes, begin, 4);
        const std::size_t header = size == 1 ? 16 : 8; // the file must contain it; sizes are checked below
        if (size == 0)
            size = end - begin;
        if (size == 1)
            size = numberAt(bytes, begin + 8, 8);
        areWhole = bytes.size() - begin >= header && size >= header && size <= end - begin;
        if (!areWhole)
            break;
        boxes.push_back({bytes.substr(begin + 4, 4), begin + header, begin + size});
        begin += size;
    }
    return boxes;
}

/// Whether valid boxes fill the file, exactly one is a "moov", and valid boxes with a track fill that one.
bool hasDescription(const std::string& bytes)
{
    bool areWhole = false;
    const auto boxes = boxesIn(bytes, 0, bytes.size(), areWhole);
    const auto isDescription = [](const Box& box) { return box.type == "moov"; };
    if (!areWhole || std::count_if(boxes.begin(), boxes.end(), isDescription) != 1)
        return false;
    const Box& description = *std::find_if(boxes.begin(), boxes.end(), isDescription);
    const auto parts = boxesIn(bytes, description.content, description.end, areWhole);
    return areWhole
        && std::any_of(parts.begin(), parts.end(), [](const Box& part) { return part.type == "trak"; });
}

/// The offset of the matrix in the track header whose type field is at `type`. It depends on the form of the
/// size and on the version byte.
std::size_t matrixPlace(const std::string& bytes, std::size_t type)
{
    const bool isLongSize = type >= 4 && numberAt(bytes, type - 4, 4) == 1;
    const std::size_t content = type + (isLongSize ? 12 : 4);
    return content + (content < bytes.size() && bytes[content] == 1 ? 52 : 40);
}

/// Whether the track header is long enough for a matrix and the picture size after it.
bool hasRoom(const std::string& bytes, std::size_t type)
{
    constexpr std::size_t pictureSize = 8;
    const std::uint64_t size = type < 4 ? 0 : numberAt(bytes, type - 4, 4);
    const bool isElsewhere = size < 2; // the size follows the type, or the box extends to its parent's end
    return isElsewhere || matrixPlace(bytes, type) + matrixSize + pictureSize <= type - 4 + size;
}

bool isInMatrix(const std::string& bytes, std::size_t place)
{
    const std::size_t first = place > 128 ? place - 128 : 0;
    for (auto type = bytes.find("tkhd", first); type < place; type = bytes.find("tkhd", type + 1)) {
        const std::size_t matrix = matrixPlace(bytes, type);
        if (hasRoom(bytes, type) && place >= matrix && place < matrix + matrixSize)
            return true;
    }
    return false;
}

void checkChanges(const std::string& before, const std::string& after)
{
    verify(before.size() == after.size(), "the file keeps its size");
    for (std::size_t place = 0; place < before.size(); ++place)
        verify(before[place] == after[place] || isInMatrix(before, place), "only matrices change");
}

/// Whether a track header contains the matrix of this many quarter turns to the left.
bool hasQuarterTurns(const std::string& bytes, std::size_t turns)
{
    constexpr std::uint64_t one = 65536;
    constexpr std::uint64_t minusOne = 0xFFFF0000;
    constexpr std::array<std::array<std::uint64_t, 4>, 4> rows
        = {{{one, 0, 0, one}, {0, minusOne, one, 0}, {minusOne, 0, 0, minusOne}, {0, one, minusOne, 0}}};
    for (auto type = bytes.find("tkhd"); type != std::string::npos; type = bytes.find("tkhd", type + 1)) {
        const std::size_t place = matrixPlace(bytes, type);
        const std::array<std::uint64_t, 4> found = {numberAt(bytes, place, 4), numberAt(bytes, place + 4, 4),
            numberAt(bytes, place + 12, 4), numberAt(bytes, place + 16, 4)};
        if (found == rows[turns])
            return true;
    }
    return false;
}

bool areNear(const DisplayMatrix& left, const DisplayMatrix& right)
{
    constexpr double rounding = 0.01;
    return std::abs(left.a - right.a) < rounding && std::abs(left.b - right.b) < rounding
        && std::abs(left.c - right.c) < rounding && std::abs(left.d - right.d) < rounding;
}

/// Writes the matrix into all video tracks twice and checks that the second time changes nothing.
void checkMatrix(const MemoryFile& file, const std::string& before, std::size_t turns)
{
    const DisplayMatrix matrix = turnedLeft(90.0 * static_cast<double>(turns));
    const bool isWritten = writeTrackMatrix(file.descriptor(), matrix);
    const std::string after = file.contents();
    checkChanges(before, after);
    verify(isWritten || after == before, "a failure changes nothing");
    verify(isCompleteMovie(file.descriptor()) == isWritten, "a new matrix does not change completeness");
    verify(!isWritten || hasQuarterTurns(after, turns), "the written matrix is the rotation");
    verify(writeTrackMatrix(file.descriptor(), matrix) == isWritten && file.contents() == after,
        "a second call changes nothing");
}

/// Applies the patches of a fix flag and checks the resulting orientation.
void checkFlag(const MemoryFile& file, const std::string& before, std::size_t turns)
{
    file.write(before);
    const auto movie = readMovie(file.descriptor());
    if (!movie || movie->videos.empty())
        return;
    const Orientation shown = orientationOf(*movie);
    const double degrees = 90.0 * static_cast<double>(turns);
    const auto patches = patchesOfFlag(*movie, degrees - shown.rotation);
    if (!patches)
        return;
    verify(!patches->empty() && applyPatches(file.descriptor(), *patches),
        "a flag has patches that can be applied");
    checkChanges(before, file.contents());
    const auto after = readMovie(file.descriptor());
    verify(after && after->videos.size() == movie->videos.size(),
        "a flag does not change the number of video tracks");
    const auto expected = combined(shown.decoded.value_or(DisplayMatrix()), turnedLeft(degrees));
    const auto decoded = orientationOf(*after).decoded;
    const VideoTrack& main = mainVideo(*movie);
    constexpr double smallest = 0.02; // with a smaller scale the fixed-point numbers are too coarse
    const bool isLarge = std::hypot(main.matrix.a, main.matrix.b) > smallest || !shown.decoded;
    const bool isSmall = std::hypot(main.matrix.a, main.matrix.b) < 32767;
    verify(main.isCover || !isLarge || !isSmall || (decoded && areNear(*decoded, expected)),
        "the shown picture has the new orientation");
}

/// Searches any bytes for an orientation message, as a movie and as a sample. One in front of them is found.
void checkMessages(const MemoryFile& file, const std::string& bytes)
{
    file.write(bytes);
    if (const auto movie = readMovie(file.descriptor()))
        hasOrientationMessage(file.descriptor(), *movie);
    const std::string payload("\x2F\x03\x08\x00\x09\x80", 6);
    for (const bool isHevc : {false, true}) {
        const std::string unit = (isHevc ? "\x4E\x01" : "\x06") + payload;
        for (std::size_t lengthSize = 1; lengthSize <= 4; ++lengthSize) {
            const NalFormat format = {isHevc, lengthSize};
            holdsOrientationMessage(bytes, format);
            const std::string length = std::string(lengthSize - 1, '\0') + static_cast<char>(unit.size());
            verify(holdsOrientationMessage(length + unit + bytes, format), "a message in front is found");
        }
    }
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    static const MemoryFile file;
    const std::string before = bytesOf(data, size);
    file.write(before);
    verify(!isCompleteMovie(file.descriptor()) || hasDescription(before),
        "a complete movie consists of valid boxes and has one moov");
    verify(file.contents() == before, "isCompleteMovie changes nothing");
    Choices choices(before);
    const std::size_t turns = choices.below(4);
    checkMatrix(file, before, turns);
    checkFlag(file, before, turns);
    checkMessages(file, before);
    return 0;
}
