// SPDX-License-Identifier: MIT
// Any bytes as the file that metadata comes from, and as the movie that it is added to: a movie stays
// readable, only its description changes, and what cannot be changed stays as it is.
#include "tests/fuzz/Promise.h"
#include "tools/MetadataBoxes.h"
#include "tools/Movie.h"

#include <sys/mman.h>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

/// A file without a name that is used again and again.
class MemoryFile
{
public:
    MemoryFile()
        : m_descriptor(::memfd_create("file", MFD_CLOEXEC))
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

std::string box(const std::string& type, const std::string& content)
{
    const std::size_t size = content.size() + 8;
    return std::string({'\0', '\0', static_cast<char>(size >> 8U), static_cast<char>(size)}) + type + content;
}

/// A movie with one video track, as far as its reader looks.
std::string goodMovie()
{
    const std::string handler = box("hdlr", std::string(8, '\0') + "vide" + std::string(13, '\0'));
    const std::string media = box("mdia", box("mdhd", std::string(24, '\0')) + handler);
    const std::string header = box("tkhd", std::string(15, '\0') + '\1' + std::string(68, '\0'));
    return box("ftyp", "isom") + box("mdat", "samples")
        + box("moov", box("mvhd", std::string(100, '\0')) + box("trak", header + media));
}

void checkAdded(const MemoryFile& movie, const MemoryFile& source, const std::string& before)
{
    const bool isComplete = isCompleteMovie(movie.descriptor());
    const auto result = addMetadata(movie.descriptor(),
        {source.descriptor(), {1, 0, 2}, {{"make", before}, {before, "x"}}, before.size() % 2 == 0});
    const std::string after = movie.contents();
    promise(result != MetadataResult::WriteFailed, "memory can be written");
    promise(result == MetadataResult::Added || after == before, "what fails changes nothing");
    promise(isCompleteMovie(movie.descriptor()) == isComplete, "metadata breaks no movie");
    const auto type = before.find("moov", 4);
    const std::size_t unchanged = type == std::string::npos ? 0 : type - 4;
    promise(result != MetadataResult::Added || after.compare(0, unchanged, before, 0, unchanged) == 0,
        "nothing before the description changes");
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
    promise(isCompleteMovie(movie.descriptor()), "the good movie is complete");
    checkAdded(movie, hostile, goodMovie());
    promise(hostile.contents() == bytes, "the source is not changed");
    movie.write(goodMovie());
    checkAdded(hostile, movie, bytes);
    return 0;
}
