// SPDX-License-Identifier: MIT
// Any bytes as a movie: creator takes it as whole only where its boxes fill the file, and writes the matrices
// of track headers and nothing else.
#include "tests/fuzz/Promise.h"
#include "tools/TrackMatrix.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr std::size_t matrixSize = 36;

/// A file without a name that is used again and again.
class MemoryFile
{
public:
    MemoryFile()
        : m_descriptor(::memfd_create("movie", MFD_CLOEXEC))
    {
        promise(m_descriptor >= 0, "there is a file in memory");
    }

    int descriptor() const { return m_descriptor; }

    void write(const std::string& bytes) const
    {
        promise(::ftruncate(m_descriptor, 0) == 0
                && ::pwrite(m_descriptor, bytes.data(), bytes.size(), 0)
                    == static_cast<ssize_t>(bytes.size()),
            "the file in memory can be written");
    }

    std::string contents() const
    {
        std::string bytes(static_cast<std::size_t>(::lseek(m_descriptor, 0, SEEK_END)), '\0');
        promise(::pread(m_descriptor, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
            "the file in memory can be read");
        return bytes;
    }

private:
    int m_descriptor;
};

std::uint64_t numberAt(const std::string& bytes, std::size_t place, std::size_t count)
{
    std::uint64_t number = 0;
    for (std::size_t byte = place; byte < place + count && byte < bytes.size(); ++byte)
        number = number << 8U | static_cast<unsigned char>(bytes[byte]);
    return number;
}

struct Box {
    std::string type;
    std::size_t content;
    std::size_t end;
};

/// The boxes up to the first that is broken, and whether none is. A size of 0 reaches to the end.
std::vector<Box> boxesIn(const std::string& bytes, std::size_t begin, std::size_t end, bool& areWhole)
{
    std::vector<Box> boxes;
    for (areWhole = true; begin < end;) {
        std::uint64_t size = numberAt(bytes, begin, 4);
        const std::size_t header = size == 1 ? 16 : 8; // its room is the file, as the sizes are checked
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

/// Whether boxes fill the file, and one of them, the only one of its type, is filled by boxes with a track.
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

/// Where the matrix of the header with that "tkhd" stands, by its size's form and its version byte.
std::size_t matrixPlace(const std::string& bytes, std::size_t type)
{
    const bool isLongSize = type >= 4 && numberAt(bytes, type - 4, 4) == 1;
    const std::size_t content = type + (isLongSize ? 12 : 4);
    return content + (content < bytes.size() && bytes[content] == 1 ? 52 : 40);
}

/// Whether the header that the type stands in is long enough for a matrix and the size behind it.
bool hasRoom(const std::string& bytes, std::size_t type)
{
    constexpr std::size_t pictureSize = 8;
    const std::uint64_t size = type < 4 ? 0 : numberAt(bytes, type - 4, 4);
    const bool isElsewhere = size < 2; // eight bytes behind the type, or up to the parent's end
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
    promise(before.size() == after.size(), "the file keeps its size");
    for (std::size_t place = 0; place < before.size(); ++place)
        promise(before[place] == after[place] || isInMatrix(before, place), "nothing but matrices changes");
}

/// The first two rows' numbers that a quarter turn to the left, so many times, is.
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

/// Writes the matrix into all video tracks, twice.
void checkMatrix(const MemoryFile& file, const std::string& before, std::size_t turns)
{
    const DisplayMatrix matrix = turnedLeft(90.0 * static_cast<double>(turns));
    const bool isWritten = writeTrackMatrix(file.descriptor(), matrix);
    const std::string after = file.contents();
    checkChanges(before, after);
    promise(isWritten || after == before, "what fails changes nothing");
    promise(isCompleteMovie(file.descriptor()) == isWritten, "a new matrix breaks no movie");
    promise(!isWritten || hasQuarterTurns(after, turns), "what was written is the turn");
    promise(writeTrackMatrix(file.descriptor(), matrix) == isWritten && file.contents() == after,
        "the second time changes nothing");
}

/// Turns what is shown by quarters.
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
    promise(!patches->empty() && applyPatches(file.descriptor(), *patches), "a flag is some patches");
    checkChanges(before, file.contents());
    const auto after = readMovie(file.descriptor());
    promise(after && after->videos.size() == movie->videos.size(), "a flag breaks no movie");
    const auto expected = combined(shown.decoded.value_or(DisplayMatrix()), turnedLeft(degrees));
    const auto decoded = orientationOf(*after).decoded;
    const VideoTrack& main = mainVideo(*movie);
    constexpr double smallest = 0.02; // a smaller scale leaves too few bits of the matrix
    const bool isLarge = std::hypot(main.matrix.a, main.matrix.b) > smallest || !shown.decoded;
    const bool isSmall = std::hypot(main.matrix.a, main.matrix.b) < 32767;
    promise(main.isCover || !isLarge || !isSmall || (decoded && areNear(*decoded, expected)),
        "what is shown is turned");
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    static const MemoryFile file;
    const std::string before = bytesOf(data, size);
    file.write(before);
    promise(!isCompleteMovie(file.descriptor()) || hasDescription(before),
        "a complete movie consists of whole boxes and has one description");
    promise(file.contents() == before, "reading changes nothing");
    Choices choices(before);
    const std::size_t turns = choices.below(4);
    checkMatrix(file, before, turns);
    checkFlag(file, before, turns);
    return 0;
}
