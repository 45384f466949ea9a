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
    FileOffset begin = 0; // of the header, in the file
    FileOffset content = 0; // behind the header
    FileOffset end = 0; // at least `content`

    bool is(std::string_view name) const { return std::string_view(type.data(), type.size()) == name; }
    FileOffset contentSize() const { return end - content; }
};

/// Reads the boxes of an open file, of which nothing is trusted: a size that leaves the file or the parent
/// makes a list of boxes invalid, and so do a file of more than `mostBoxes` boxes and a cancel.
class BoxReader
{
public:
    static constexpr std::size_t mostBoxes = std::size_t(1) << 20U;

    /// Keeps the descriptor, which the caller closes. Its offset is neither used nor moved.
    explicit BoxReader(int file);

    /// The size of the file when the reader was made; 0 where that is unknown.
    FileOffset fileSize() const { return m_fileSize; }

    /// Whether the first bytes of the file are the header of a box that ends in the file.
    bool beginsWithBox() const { return boxAt(0, m_fileSize).has_value(); }

    /// The boxes at the top level. Empty unless they fill the file without a gap.
    std::optional<std::vector<Box>> boxesOfFile();

    /// The boxes at the top level up to the first one that is broken, for files that end with other bytes.
    std::vector<Box> leadingBoxesOfFile();

    /// The boxes in the content of `parent`, behind its first `skipped` bytes. Empty unless they fill it.
    std::optional<std::vector<Box>> boxesIn(const Box& parent, FileOffset skipped = 0);

    /// The one box of that type in the content of `parent`. Empty where there is none or more than one, or
    /// the boxes do not fill the content.
    std::optional<Box> onlyBoxIn(const Box& parent, std::string_view type);

    /// The bytes of the content from `offset` on, at most `count` of them; fewer at the end of the content
    /// and none on a read error.
    std::string contentOf(const Box& box, std::size_t count, FileOffset offset = 0) const;

private:
    /// Whether another box may be read; counts it.
    bool mayReadOn();
    std::optional<std::vector<Box>> boxesBetween(FileOffset begin, FileOffset end);
    std::optional<Box> boxAt(FileOffset begin, FileOffset end) const;
    std::string bytesAt(FileOffset offset, std::size_t count) const;

    int m_file;
    FileOffset m_fileSize = 0;
    std::size_t m_boxesLeft = mostBoxes;
};

/// The one box of that type in the list; null where there is none or more than one.
const Box* onlyBox(const std::vector<Box>& boxes, std::string_view type);

/// A number of at most eight bytes, the most significant one first.
std::uint64_t readBigEndian(std::string_view bytes);

/// The number in `count` bytes, 1 to 8, the most significant one first.
std::string bigEndianBytes(std::uint64_t number, int count);

/// The bytes of a box with that content, of less than 4 GiB.
std::string boxBytes(std::string_view type, std::string_view content);
