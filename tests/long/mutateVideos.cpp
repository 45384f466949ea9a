// SPDX-License-Identifier: MIT
// Creates damaged copies of the files of a folder: flipped bits, cuts, splices with another file, and wrong
// box sizes. Copy number N depends only on the files and the seed.
//
//   mutateVideos SOURCES TARGET SEED FIRST COUNT
//
// Uses the files of the folder SOURCES that are at most five million bytes long and do not end in .tsv.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

constexpr std::uintmax_t largestSource = 5000000; // bytes
constexpr std::size_t headOfFile = 4096; // bytes; contains most of the structure that a demuxer reads
constexpr std::size_t boxHeader = 8;

/// A random number generator with the same sequence on every platform, unlike the standard distributions.
class Random
{
public:
    Random(std::uint64_t seed, std::uint64_t number)
    {
        std::seed_seq seeds{seed, number};
        m_engine.seed(seeds);
    }

    /// A number below `limit`; 0 for a limit of 0.
    std::size_t below(std::size_t limit)
    {
        return limit == 0 ? 0 : static_cast<std::size_t>(m_engine() % limit);
    }

    template <typename Choices>
    const auto& oneOf(const Choices& choices)
    {
        return choices[below(std::size(choices))];
    }

private:
    std::mt19937_64 m_engine;
};

std::string contentsOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<fs::path> sourcesIn(const fs::path& folder)
{
    std::vector<fs::path> sources;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.is_regular_file() && entry.path().extension() != ".tsv" && entry.file_size() > 0
            && entry.file_size() <= largestSource)
            sources.push_back(entry.path());
    }
    std::sort(sources.begin(), sources.end());
    return sources;
}

/// A random offset; in half of the cases within the first or the last 4096 bytes.
std::size_t placeIn(const std::string& bytes, Random& random)
{
    const std::size_t head = std::min(headOfFile, bytes.size());
    switch (random.below(4)) {
    case 0:
        return random.below(head);
    case 1:
        return bytes.size() - head + random.below(head);
    default:
        return random.below(bytes.size());
    }
}

std::string flipBits(std::string bytes, const std::string&, Random& random)
{
    for (std::size_t left = std::size_t(1) << random.below(8); left > 0 && !bytes.empty(); --left) {
        char& byte = bytes[placeIn(bytes, random)];
        byte = static_cast<char>(byte ^ (1 << random.below(8)));
    }
    return bytes;
}

/// Removes the end, the beginning, or a part of the middle.
std::string cut(std::string bytes, const std::string&, Random& random)
{
    const std::size_t place = placeIn(bytes, random);
    switch (random.below(4)) {
    case 0:
        return bytes.substr(place);
    case 1:
        return bytes.erase(place, 1 + random.below(bytes.size() - place));
    default:
        return bytes.substr(0, place);
    }
}

/// Inserts a piece of the other file or of the same file, or overwrites bytes with it.
std::string splice(std::string bytes, const std::string& other, Random& random)
{
    const std::string donor = random.below(3) == 0 ? bytes : other;
    const std::size_t begin = placeIn(donor, random);
    const std::string piece = donor.substr(begin, 1 + random.below(std::size_t(1) << random.below(20)));
    const std::size_t place = placeIn(bytes, random);
    return bytes.replace(place, random.below(2) == 0 ? 0 : piece.size(), piece);
}

std::size_t numberAt(const std::string& bytes, std::size_t place, std::size_t count)
{
    std::size_t number = 0;
    for (std::size_t byte = place; byte < place + count; ++byte)
        number = number << 8U | static_cast<unsigned char>(bytes[byte]);
    return number;
}

void writeNumber(std::string& bytes, std::size_t place, std::size_t count, std::uint64_t number)
{
    for (std::size_t byte = place + count; byte > place; number >>= 8U)
        bytes[--byte] = static_cast<char>(number & 0xFFU);
}

bool isBoxType(const std::string& bytes, std::size_t place)
{
    return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(place),
        bytes.begin() + static_cast<std::ptrdiff_t>(place) + 4,
        [](char letter) { return letter == ' ' || (letter >= '0' && letter <= 'z'); });
}

/// Collects the offsets of all MP4 boxes, including nested ones.
void collectBoxes(
    const std::string& bytes, std::size_t begin, std::size_t end, std::vector<std::size_t>& boxes)
{
    while (end - begin >= boxHeader && isBoxType(bytes, begin + 4)) {
        const std::size_t size = numberAt(bytes, begin, 4);
        if (size < boxHeader || size > end - begin)
            return;
        boxes.push_back(begin);
        collectBoxes(bytes, begin + boxHeader, begin + size, boxes);
        begin += size;
    }
}

/// Changes the size of one box. Without boxes, changes any four bytes near the beginning.
std::string resizeBox(std::string bytes, const std::string&, Random& random)
{
    constexpr std::size_t sizeBytes = 4;
    constexpr std::array<std::uint64_t, 12> oddSizes
        = {0, 1, 2, 7, 8, 9, 15, 16, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};
    if (bytes.size() < 2 * boxHeader)
        return bytes;
    std::vector<std::size_t> boxes;
    collectBoxes(bytes, 0, bytes.size(), boxes);
    const std::size_t place
        = boxes.empty() ? random.below(std::min(headOfFile, bytes.size() - sizeBytes)) : random.oneOf(boxes);
    const std::uint64_t size = numberAt(bytes, place, sizeBytes);
    switch (random.below(4)) {
    case 0:
        writeNumber(bytes, place, sizeBytes, random.oneOf(oddSizes));
        break;
    case 1:
        writeNumber(bytes, place, sizeBytes, size + random.below(64) - 32);
        break;
    case 2:
        writeNumber(bytes, place, sizeBytes, random.below(bytes.size() * 2));
        break;
    default: // a 64-bit size after the type
        writeNumber(bytes, place, sizeBytes, 1);
        writeNumber(bytes, std::min(place + boxHeader, bytes.size() - 8), 8,
            random.below(2) == 0 ? random.oneOf(oddSizes) : ~random.oneOf(oddSizes));
    }
    return bytes;
}

/// A kind of damage: its name in the file names of mutants, and its function.
struct Kind {
    const char* name;
    std::string (*damaged)(std::string bytes, const std::string& other, Random& random);
};

constexpr Kind kinds[] = {{"bits", flipBits}, {"cut", cut}, {"splice", splice}, {"box-size", resizeBox}};

void makeMutant(
    const std::vector<fs::path>& sources, const fs::path& target, std::uint64_t seed, std::uint64_t number)
{
    Random random(seed, number);
    const fs::path& source = random.oneOf(sources);
    const std::string other = contentsOf(random.oneOf(sources));
    const Kind& kind = kinds[number % std::size(kinds)];
    std::string bytes = contentsOf(source);
    for (std::size_t left = 1 + random.below(3); left > 0 && !bytes.empty(); --left)
        bytes = kind.damaged(std::move(bytes), other, random);
    std::array<char, 16> padded{};
    std::snprintf(padded.data(), padded.size(), "%06llu", static_cast<unsigned long long>(number));
    const std::string name = std::string(padded.data()) + "-" + kind.name + "-" + source.filename().string();
    std::ofstream(target / name, std::ios::binary) << bytes;
}

} // namespace

int main(int argc, char* argv[])
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() != 5) {
        std::fputs("usage: mutateVideos SOURCES TARGET SEED FIRST COUNT\n", stderr);
        return 2;
    }
    const std::vector<fs::path> sources = sourcesIn(arguments[0]);
    if (sources.empty()) {
        std::fputs("mutateVideos: the folder contains no usable file\n", stderr);
        return 2;
    }
    const std::uint64_t seed = std::stoull(arguments[2]);
    const std::uint64_t first = std::stoull(arguments[3]);
    for (std::uint64_t number = first; number < first + std::stoull(arguments[4]); ++number)
        makeMutant(sources, arguments[1], seed, number);
    return 0;
}
