// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using FileOffset = std::int64_t;

/// One box of an ISO base media file (MP4, QuickTime): a size, a type of four bytes, and a content.
struct Box {
    std::array<char, 4> type = {};
    FileOffset begin = 0; // offset of the header in the file
    FileOffset content = 0; // offset of the first byte after the header
    FileOffset end = 0; // at least `content`

    bool is(std::string_view name) const { return std::string_view(type.data(), type.size()) == name; }
    FileOffset contentSize() const { return end - content; }
};

/// Reads the boxes of an open file and validates their sizes. A list of boxes is invalid if a box exceeds the
/// file or its parent, if more than `mostBoxes` boxes have been read, or after a cancel.
class BoxReader
{
public:
    static constexpr std::size_t mostBoxes = std::size_t(1) << 20U;

    /// Keeps the descriptor; the caller closes it. Neither uses nor changes the file offset.
    explicit BoxReader(int file);

    /// The size of the file when the reader was constructed; 0 if it is unknown.
    FileOffset fileSize() const { return m_fileSize; }

    /// Whether `mostBoxes` boxes have been read, so that no further list is read.
    bool hasReachedLimit() const { return m_boxesLeft == 0; }

    /// Whether the file begins with the header of a box that ends within the file.
    bool beginsWithBox() const { return boxAt(0, m_fileSize).has_value(); }

    /// The boxes at the top level. Empty unless they fill the file without gaps.
    std::optional<std::vector<Box>> boxesOfFile();

    /// The boxes at the top level before the first invalid one. For files that end with other bytes.
    std::vector<Box> leadingBoxesOfFile();

    /// The boxes in the content of `parent` after its first `skipped` bytes, before the first invalid one.
    std::vector<Box> leadingBoxesIn(const Box& parent, FileOffset skipped);

    /// The boxes in the content of `parent` after its first `skipped` bytes. Empty unless they fill the
    /// content.
    std::optional<std::vector<Box>> boxesIn(const Box& parent, FileOffset skipped = 0);

    /// The only box of that type in the content of `parent`. Empty if there is none or more than one, or if
    /// the boxes do not fill the content.
    std::optional<Box> onlyBoxIn(const Box& parent, std::string_view type);

    /// At most `count` bytes of the content from `offset` on: fewer at the end of the content, none on a read
    /// error.
    std::string contentOf(const Box& box, std::size_t count, FileOffset offset = 0) const;

private:
    /// Counts one more box. False after a cancel or if the limit is reached.
    bool mayReadOn();
    std::optional<std::vector<Box>> boxesBetween(FileOffset begin, FileOffset end);
    std::vector<Box> leadingBoxesBetween(FileOffset begin, FileOffset end);
    std::optional<Box> boxAt(FileOffset begin, FileOffset end) const;
    std::string bytesAt(FileOffset offset, std::size_t count) const;

    int m_file;
    FileOffset m_fileSize = 0;
    std::size_t m_boxesLeft = mostBoxes;
};

/// The only box of that type in the list; null if there is none or more than one.
const Box* onlyBox(const std::vector<Box>& boxes, std::string_view type);

/// A number of at most eight bytes in big-endian order.
std::uint64_t readBigEndian(std::string_view bytes);

/// The big-endian number in `count` bytes, 1 to 8.
std::string bigEndianBytes(std::uint64_t number, int count);

/// The bytes of a box with that content, which has less than 4 GiB.
std::string boxBytes(std::string_view type, std::string_view content);
