// SPDX-License-Identifier: MIT
#include "tools/Boxes.h"

#include "tools/Cancel.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{

constexpr FileOffset shortHeader = 8; // size, type
constexpr FileOffset longHeader = 16; // 1, type, size of eight bytes
constexpr std::uint64_t sizeFollowsType = 1;
constexpr std::uint64_t extendsToEnd = 0;
constexpr unsigned int bitsPerByte = 8;

} // namespace

BoxReader::BoxReader(int file)
    : m_file(file)
{
    struct stat status = {};
    if (::fstat(file, &status) == 0)
        m_fileSize = status.st_size;
}

std::optional<std::vector<Box>> BoxReader::boxesOfFile()
{
    return boxesBetween(0, m_fileSize);
}

std::vector<Box> BoxReader::leadingBoxesOfFile()
{
    return leadingBoxesBetween(0, m_fileSize);
}

std::vector<Box> BoxReader::leadingBoxesIn(const Box& parent, FileOffset skipped)
{
    return leadingBoxesBetween(parent.content + skipped, parent.end);
}

std::optional<std::vector<Box>> BoxReader::boxesIn(const Box& parent, FileOffset skipped)
{
    if (skipped > parent.contentSize())
        return std::nullopt;
    return boxesBetween(parent.content + skipped, parent.end);
}

std::optional<Box> BoxReader::onlyBoxIn(const Box& parent, std::string_view type)
{
    const auto boxes = boxesIn(parent);
    const Box* box = boxes ? onlyBox(*boxes, type) : nullptr;
    return box != nullptr ? std::optional(*box) : std::nullopt;
}

std::string BoxReader::contentOf(const Box& box, std::size_t count, FileOffset offset) const
{
    if (offset < 0 || offset >= box.contentSize())
        return {};
    const auto available = static_cast<std::uint64_t>(box.contentSize() - offset);
    return bytesAt(box.content + offset, static_cast<std::size_t>(std::min<std::uint64_t>(count, available)));
}

std::vector<Box> BoxReader::leadingBoxesBetween(FileOffset begin, FileOffset end)
{
    std::vector<Box> boxes;
    while (begin < end && mayReadOn()) {
        const auto box = boxAt(begin, end);
        if (!box)
            break;
        boxes.push_back(*box);
        begin = box->end;
    }
    return boxes;
}

std::optional<std::vector<Box>> BoxReader::boxesBetween(FileOffset begin, FileOffset end)
{
    auto boxes = leadingBoxesBetween(begin, end);
    const bool isFilled = (boxes.empty() ? begin : boxes.back().end) >= end;
    return isFilled ? std::optional(std::move(boxes)) : std::nullopt;
}

bool BoxReader::mayReadOn()
{
    constexpr std::size_t boxesBetweenChecks = 1024;
    if (m_boxesLeft == 0 || (m_boxesLeft % boxesBetweenChecks == 0 && isCancelled()))
        return false;
    --m_boxesLeft;
    return true;
}

/// The box whose header is at `begin`. Empty if it does not end by `end`.
std::optional<Box> BoxReader::boxAt(FileOffset begin, FileOffset end) const
{
    const auto room = static_cast<std::uint64_t>(end - begin);
    const std::string header = bytesAt(begin, longHeader); // most boxes have a short header
    if (header.size() < shortHeader)
        return std::nullopt;
    Box box;
    std::copy_n(header.begin() + 4, box.type.size(), box.type.begin());
    box.begin = begin;
    box.content = begin + shortHeader;
    std::uint64_t size = readBigEndian(header.substr(0, 4));
    if (size == extendsToEnd)
        size = room;
    if (size == sizeFollowsType) {
        if (header.size() < longHeader)
            return std::nullopt;
        size = readBigEndian(header.substr(shortHeader));
        box.content = begin + longHeader;
    }
    if (size > room || size < static_cast<std::uint64_t>(box.content - begin))
        return std::nullopt;
    box.end = begin + static_cast<FileOffset>(size);
    return box;
}

std::string BoxReader::bytesAt(FileOffset offset, std::size_t count) const
{
    std::string bytes(count, '\0');
    ssize_t got = 0;
    do
        got = ::pread(m_file, bytes.data(), count, offset);
    while (got < 0 && errno == EINTR);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

const Box* onlyBox(const std::vector<Box>& boxes, std::string_view type)
{
    const auto isWanted = [type](const Box& box) { return box.is(type); };
    const auto found = std::find_if(boxes.begin(), boxes.end(), isWanted);
    const bool isOnly = found != boxes.end() && std::find_if(found + 1, boxes.end(), isWanted) == boxes.end();
    return isOnly ? &*found : nullptr;
}

std::uint64_t readBigEndian(std::string_view bytes)
{
    std::uint64_t number = 0;
    for (const char byte : bytes)
        number = number << bitsPerByte | static_cast<unsigned char>(byte);
    return number;
}

std::string bigEndianBytes(std::uint64_t number, int count)
{
    std::string bytes;
    for (int place = count - 1; place >= 0; --place)
        bytes += static_cast<char>(number >> (bitsPerByte * static_cast<unsigned int>(place)) & 0xFFU);
    return bytes;
}

std::string boxBytes(std::string_view type, std::string_view content)
{
    std::string bytes = bigEndianBytes(content.size() + shortHeader, 4);
    return bytes.append(type).append(content);
}
