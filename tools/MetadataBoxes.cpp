// SPDX-License-Identifier: MIT
#include "tools/MetadataBoxes.h"

#include "tools/Boxes.h"
#include "tools/FileCopy.h"
#include "tools/MetadataKeys.h"
#include "tools/MovieMetadata.h"

#include <algorithm>
#include <unistd.h>

namespace
{

using Boxes = std::vector<Box>;

// More than the sample tables of a day of video. Rewriting needs three times this amount of memory.
constexpr FileOffset largestMovie = FileOffset(1) << 28U;

/// Writes the times into the content of a header. Skips a time that is 0 (unknown) or does not fit.
void setTimes(std::string& content, const MovieTimes& times)
{
    if (content.empty() || times.created == 0)
        return;
    const std::size_t size = timeSize(content[0]);
    const bool fits = size == 8 || std::max(times.created, times.modified) <= UINT32_MAX;
    if (!fits || content.size() < timesOffset + 2 * size)
        return;
    const auto bytes = static_cast<int>(size);
    content.replace(
        timesOffset, 2 * size, bigEndianBytes(times.created, bytes) + bigEndianBytes(times.modified, bytes));
}

void setLanguage(std::string& content, const std::optional<std::string>& language)
{
    const std::size_t offset = content.empty() ? 0 : languageOffset(content[0]);
    if (language && content.size() >= offset + language->size())
        content.replace(offset, language->size(), *language);
}

/// ffmpeg also writes the brand of Dolby Vision into a transcode, which is no Dolby Vision video. Replaces it
/// with "isom", which may then be listed twice. False if it cannot be written.
bool removeDolbyBrand(int file)
{
    constexpr std::string_view dolby = "dby1";
    constexpr std::string_view common = "isom";
    constexpr std::size_t compatibleOffset = 8; // after the major brand and its version
    constexpr std::size_t mostBytes = 1024;
    BoxReader reader(file);
    const Boxes boxes = reader.leadingBoxesOfFile();
    if (boxes.empty() || !boxes.front().is("ftyp"))
        return true;
    const std::string brands = reader.contentOf(boxes.front(), mostBytes);
    for (std::size_t place = compatibleOffset; place + dolby.size() <= brands.size(); place += dolby.size()) {
        const auto offset = boxes.front().content + static_cast<FileOffset>(place);
        if (brands.compare(place, dolby.size(), dolby) == 0 && !writeBytes(file, common, offset))
            return false;
    }
    return true;
}

/// Builds a new movie description from the old one and the metadata of the source.
class MovieRewriter
{
public:
    MovieRewriter(int file, const MovieMetadata& metadata, const std::vector<std::uint32_t>& trackIds)
        : m_file(file)
        , m_reader(file)
        , m_metadata(metadata)
        , m_trackIds(trackIds)
    {
    }

    MetadataResult rewrite()
    {
        const auto boxes = m_reader.boxesOfFile();
        const Box* movie = boxes ? onlyBox(*boxes, "moov") : nullptr;
        if (movie == nullptr || movie->end != m_reader.fileSize() || movie->contentSize() > largestMovie)
            return MetadataResult::NotAdded;
        const auto parts = m_reader.boxesIn(*movie);
        if (!parts)
            return MetadataResult::NotAdded;
        const std::string content = contentFrom(*parts);
        if (m_hasReadError)
            return MetadataResult::NotAdded;
        return write(movie->begin, boxBytes("moov", content));
    }

private:
    std::string contentOf(const Box& box)
    {
        const auto size = static_cast<std::size_t>(box.contentSize());
        std::string content = m_reader.contentOf(box, size);
        m_hasReadError = m_hasReadError || content.size() != size;
        return content;
    }

    std::string bytesOf(const Box& box)
    {
        return boxBytes(std::string_view(box.type.data(), box.type.size()), contentOf(box));
    }

    std::string contentFrom(const Boxes& parts)
    {
        std::string content;
        std::size_t tracks = 0;
        std::string userData = m_metadata.userData;
        for (const Box& part : parts) {
            if (part.is("mvhd"))
                content += headerWith(part, m_metadata.header);
            else if (part.is("trak"))
                content += trackWith(part, metadataOfTrack(tracks++));
            else if (part.is("udta"))
                userData += keptUserData(part);
            else
                content += bytesOf(part);
        }
        content += m_metadata.boxes;
        return userData.empty() ? content : content + boxBytes("udta", userData);
    }

    /// The boxes in ffmpeg's user data that the source's user data does not replace: always chapters.
    std::string keptUserData(const Box& userData)
    {
        const auto parts = m_reader.boxesIn(userData).value_or(Boxes());
        std::string kept;
        for (const Box& part : parts) {
            const bool isReplaced = part.is("meta") ? m_metadata.hasItems : m_metadata.hasUserData;
            if (!isReplaced || part.is("chpl"))
                kept += bytesOf(part);
        }
        return kept;
    }

    const TrackMetadata* metadataOfTrack(std::size_t place) const
    {
        if (place >= m_trackIds.size())
            return nullptr;
        const auto found = m_metadata.tracks.find(m_trackIds[place]);
        return found != m_metadata.tracks.end() ? &found->second : nullptr;
    }

    std::string headerWith(const Box& header, const MovieTimes& times)
    {
        std::string content = contentOf(header);
        setTimes(content, times);
        return boxBytes(std::string_view(header.type.data(), header.type.size()), content);
    }

    std::string trackWith(const Box& track, const TrackMetadata* metadata)
    {
        const auto parts = m_reader.boxesIn(track);
        if (metadata == nullptr || !parts)
            return bytesOf(track);
        std::string content;
        for (const Box& part : *parts) {
            if (part.is("tkhd"))
                content += headerWith(part, metadata->header);
            else if (part.is("mdia"))
                content += mediaWith(part, *metadata);
            else if (!part.is("udta") || !metadata->hasUserData)
                content += bytesOf(part);
        }
        return boxBytes("trak", content + metadata->boxes);
    }

    std::string mediaWith(const Box& media, const TrackMetadata& metadata)
    {
        const auto parts = m_reader.boxesIn(media);
        if (!parts)
            return bytesOf(media);
        std::string result;
        for (const Box& part : *parts) {
            if (!part.is("mdhd")) {
                result += bytesOf(part);
                continue;
            }
            std::string content = contentOf(part);
            setTimes(content, metadata.media);
            setLanguage(content, metadata.language);
            result += boxBytes("mdhd", content) + metadata.extendedLanguage;
        }
        return boxBytes("mdia", result);
    }

    MetadataResult write(FileOffset begin, const std::string& movie) const
    {
        const bool isWritten = writeBytes(m_file, movie, begin)
            && ::ftruncate(m_file, begin + static_cast<FileOffset>(movie.size())) == 0;
        return isWritten ? MetadataResult::Added : MetadataResult::WriteFailed;
    }

    int m_file;
    BoxReader m_reader;
    const MovieMetadata& m_metadata;
    const std::vector<std::uint32_t>& m_trackIds;
    bool m_hasReadError = false;
};

} // namespace

MetadataResult addMetadata(int movie, const MetadataSource& source)
{
    auto metadata = readMovieMetadata(source.file, source.isCopy);
    if (!metadata) {
        metadata.emplace();
        metadata->boxes = keysBox(source.tags);
    }
    const auto result = MovieRewriter(movie, *metadata, source.trackIds).rewrite();
    if (result == MetadataResult::Added && !source.isCopy && !removeDolbyBrand(movie))
        return MetadataResult::WriteFailed;
    return result;
}
