// SPDX-License-Identifier: MIT
// Input: any bytes, both as the source of metadata and as the movie that receives it. The movie stays
// complete, only its box "moov" and the file type of an encoding change, and after a failure nothing has
// changed.
#include "tests/fuzz/MemoryFile.h"
#include "tests/fuzz/Verify.h"
#include "tools/MetadataBoxes.h"
#include "tools/Movie.h"

#include <algorithm>

namespace tarnwell::test
{

namespace
{

std::string box(const std::string& type, const std::string& content)
{
    const std::size_t size = content.size() + 8;
    return std::string({'\0', '\0', static_cast<char>(size >> 8U), static_cast<char>(size)}) + type + content;
}

/// A minimal movie with one video track that readMovie accepts.
std::string goodMovie()
{
    const std::string handler = box("hdlr", std::string(8, '\0') + "vide" + std::string(13, '\0'));
    const std::string media = box("mdia", box("mdhd", std::string(24, '\0')) + handler);
    const std::string header = box("tkhd", std::string(15, '\0') + '\1' + std::string(68, '\0'));
    return box("ftyp", "isom") + box("mdat", "samples")
        + box("moov", box("mvhd", std::string(100, '\0')) + box("trak", header + media));
}

/// The size of the file type that the bytes begin with; 0 without one, and all for one of an unusual size.
std::size_t sizeOfFileType(const std::string& bytes)
{
    constexpr std::size_t header = 8;
    if (bytes.compare(4, 4, "ftyp") != 0)
        return 0;
    std::size_t size = 0;
    for (std::size_t place = 0; place < 4; ++place)
        size = size << 8U | static_cast<unsigned char>(bytes[place]);
    return size < header ? bytes.size() : std::min(size, bytes.size());
}

void checkAdded(const MemoryFile& movie, const MemoryFile& source, const std::string& before)
{
    const bool isComplete = isCompleteMovie(movie.descriptor());
    const bool isCopy = before.size() % 2 == 0;
    const auto result = addMetadata(
        movie.descriptor(), {source.descriptor(), {1, 0, 2}, {{"make", before}, {before, "x"}}, isCopy});
    const std::string after = movie.contents();
    verify(result != MetadataResult::WriteFailed, "writing to memory does not fail");
    verify(result == MetadataResult::Added || after == before, "a failure changes nothing");
    verify(isCompleteMovie(movie.descriptor()) == isComplete, "metadata does not change completeness");
    const auto type = before.find("moov", 4);
    const std::size_t unchanged = type == std::string::npos ? 0 : type - 4;
    if (result != MetadataResult::Added)
        return;
    const std::size_t first = isCopy ? 0 : std::min(unchanged, sizeOfFileType(before));
    verify(after.compare(first, unchanged - first, before, first, unchanged - first) == 0,
        "the bytes before moov do not change, except the file type of an encoding");
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    static const MemoryFile hostile;
    static const MemoryFile movie;
    const std::string bytes = bytesOf(data, size);
    hostile.write(bytes);
    movie.write(goodMovie());
    verify(isCompleteMovie(movie.descriptor()), "the minimal movie is complete");
    checkAdded(movie, hostile, goodMovie());
    verify(hostile.contents() == bytes, "the source does not change");
    movie.write(goodMovie());
    checkAdded(hostile, movie, bytes);
    return 0;
}
