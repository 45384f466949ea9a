// SPDX-License-Identifier: MIT
#include "tools/MovieMetadata.h"

#include "tools/Boxes.h"
#include "tools/Movie.h"

#include <algorithm>
#include <vector>

namespace
{

using Boxes = std::vector<Box>;

// All metadata together: more than any thumbnail, cover picture or vendor's record.
constexpr FileOffset largestMetadata = FileOffset(1) << 26U;

constexpr FileOffset versionAndFlags = 4;

bool has(const Boxes& boxes, std::string_view type)
{
    return std::any_of(boxes.begin(), boxes.end(), [type](const Box& box) { return box.is(type); });
}

MovieTimes timesOf(const BoxReader& reader, const Box& header)
{
    const std::string version = reader.contentOf(header, 1);
    if (version.empty() || version[0] > 1)
        return {};
    const std::size_t size = timeSize(version[0]);
    const std::string bytes = reader.contentOf(header, 2 * size, static_cast<FileOffset>(timesOffset));
    if (bytes.size() != 2 * size)
        return {};
    return {readBigEndian(bytes.substr(0, size)), readBigEndian(bytes.substr(size))};
}

constexpr std::uint64_t undetermined = 0x55C4; // "und"

/// The language of a track as MP4 packs it, three letters of five bits. Empty for a code of the Macintosh,
/// which ffmpeg translates, and for an undetermined language.
std::optional<std::string> languageOf(const BoxReader& reader, const Box& header)
{
    constexpr std::uint64_t firstPacked = 0x400;
    constexpr std::uint64_t unspecified = 0x7FFF;
    const std::string version = reader.contentOf(header, 1);
    const std::string bytes = version.empty()
        ? ""
        : reader.contentOf(header, 2, static_cast<FileOffset>(languageOffset(version[0])));
    const std::uint64_t language = readBigEndian(bytes);
    if (bytes.size() != 2 || language < firstPacked || language == unspecified || language == undetermined)
        return std::nullopt;
    return bytes;
}

/// Reads the metadata of an MP4 or QuickTime file.
class MetadataReader
{
public:
    MetadataReader(int file, bool isCopy)
        : m_reader(file)
        , m_isCopy(isCopy)
    {
    }

    /// Empty where the file has no single description or boxes do not fill that.
    std::optional<MovieMetadata> read()
    {
        const auto boxes = m_reader.leadingBoxesOfFile();
        const Box* movie = onlyBox(boxes, "moov");
        const auto parts = movie != nullptr ? m_reader.boxesIn(*movie) : std::nullopt;
        if (!parts)
            return std::nullopt;
        for (const Box& part : *parts) {
            if (part.is("mvhd"))
                m_metadata.header = timesOf(m_reader, part);
            else if (part.is("trak"))
                readTrack(part);
            else if (part.is("udta"))
                readUserData(part);
            else if ((part.is("meta") && isSelfContained(part)) || part.is("uuid"))
                m_metadata.boxes += bytesOf(part);
        }
        return m_metadata;
    }

private:
    /// The whole box; empty for one that is too large, alone or together with the others, or not readable.
    std::string bytesOf(const Box& box)
    {
        if (box.contentSize() > m_bytesLeft)
            return {};
        m_bytesLeft -= box.contentSize();
        const std::string content = m_reader.contentOf(box, static_cast<std::size_t>(box.contentSize()));
        const bool isWhole = content.size() == static_cast<std::size_t>(box.contentSize());
        return isWhole ? boxBytes(std::string_view(box.type.data(), box.type.size()), content) : "";
    }

    /// "meta" has version and flags in MP4 and none in QuickTime.
    std::optional<Boxes> partsOfMeta(const Box& meta)
    {
        const auto parts = m_reader.boxesIn(meta, versionAndFlags);
        return parts && has(*parts, "hdlr") ? parts : m_reader.boxesIn(meta);
    }

    /// Whether the metadata is within the box and not at places of the file that it names.
    bool isSelfContained(const Box& meta)
    {
        const auto parts = partsOfMeta(meta);
        return parts && has(*parts, "hdlr") && !has(*parts, "iloc");
    }

    /// QuickTime may end user data with four zero bytes.
    Boxes partsOfUserData(const Box& userData)
    {
        constexpr FileOffset terminatorSize = 4;
        auto parts = m_reader.boxesIn(userData);
        if (!parts && userData.contentSize() >= terminatorSize) {
            Box shorter = userData;
            shorter.end -= terminatorSize;
            parts = m_reader.boxesIn(shorter);
        }
        return parts.value_or(Boxes());
    }

    void readUserData(const Box& userData)
    {
        for (const Box& part : partsOfUserData(userData)) {
            if (part.is("meta") && !isSelfContained(part))
                continue;
            const std::string copy = bytesOf(part);
            m_metadata.hasItems = m_metadata.hasItems || (part.is("meta") && !copy.empty());
            if (!part.is("chpl")) // ffmpeg writes a new one with the chapters
                m_metadata.userData += copy;
        }
        m_metadata.hasUserData = true;
    }

    void readTrack(const Box& track)
    {
        const auto parts = m_reader.boxesIn(track);
        const Box* header = parts ? onlyBox(*parts, "tkhd") : nullptr;
        if (header == nullptr)
            return;
        TrackMetadata metadata;
        metadata.header = timesOf(m_reader, *header);
        for (const Box& part : *parts) {
            if (part.is("mdia"))
                readMedia(part, metadata);
            else if (part.is("udta"))
                addUserData(part, metadata);
            else if ((part.is("meta") && isSelfContained(part)) || (part.is("uuid") && m_isCopy))
                metadata.boxes += bytesOf(part);
        }
        m_metadata.tracks[trackNumber(m_reader, *header)] = metadata;
    }

    void readMedia(const Box& media, TrackMetadata& metadata)
    {
        const auto parts = m_reader.boxesIn(media).value_or(Boxes());
        if (const Box* header = onlyBox(parts, "mdhd")) {
            metadata.media = timesOf(m_reader, *header);
            metadata.language = languageOf(m_reader, *header);
        }
        if (const Box* extended = onlyBox(parts, "elng"))
            metadata.extendedLanguage = bytesOf(*extended);
    }

    void addUserData(const Box& userData, TrackMetadata& metadata)
    {
        std::string content;
        for (const Box& part : partsOfUserData(userData))
            content += bytesOf(part);
        if (content.empty())
            return;
        metadata.boxes += boxBytes("udta", content);
        metadata.hasUserData = true;
    }

    BoxReader m_reader;
    bool m_isCopy;
    FileOffset m_bytesLeft = largestMetadata;
    MovieMetadata m_metadata;
};

} // namespace

std::optional<MovieMetadata> readMovieMetadata(int file, bool isCopy)
{
    return MetadataReader(file, isCopy).read();
}

std::size_t timeSize(char version)
{
    return version == 1 ? 8 : 4;
}

std::size_t languageOffset(char version)
{
    return version == 1 ? 32 : 20;
}
