// SPDX-License-Identifier: MIT
#include "tools/OrientationMessage.h"

#include <algorithm>
#include <optional>
#include <string>

namespace
{

constexpr std::uint64_t displayOrientation = 47; // the payload type, in H.264 and in HEVC
constexpr std::size_t mostSampleBytes = std::size_t(1) << 16U;

unsigned int byteAt(std::string_view bytes, std::size_t place)
{
    return static_cast<unsigned char>(bytes[place]);
}

/// Removes the byte 3 behind two zeros, which escapes a NAL unit.
std::string withoutEscapes(std::string_view unit)
{
    std::string bytes;
    std::size_t zeros = 0;
    for (const char byte : unit) {
        const bool isEscape = zeros >= 2 && byte == 3;
        zeros = byte == 0 ? zeros + 1 : 0;
        if (!isEscape)
            bytes += byte;
    }
    return bytes;
}

/// Removes a number from the front. It is the sum of bytes of 255 and one smaller byte. Empty at the end.
std::optional<std::uint64_t> takeNumber(std::string_view& bytes)
{
    constexpr unsigned int continued = 0xFF;
    std::uint64_t number = 0;
    while (!bytes.empty()) {
        const unsigned int byte = byteAt(bytes, 0);
        bytes.remove_prefix(1);
        number += byte;
        if (byte != continued)
            return number;
    }
    return std::nullopt;
}

/// The payload has one bit that cancels an older message, two for mirrors and 16 for the turn. Decoders
/// ignore a message without a turn or mirror.
bool changesOrientation(std::string_view payload)
{
    constexpr std::size_t size = 3;
    constexpr unsigned int unusedBits = 5;
    constexpr std::uint64_t cancel = std::uint64_t(1) << 18U;
    const std::uint64_t fields = readBigEndian(payload.substr(0, size)) >> unusedBits;
    return payload.size() >= size && fields != 0 && (fields & cancel) == 0;
}

/// `messages` is the content of an SEI unit without its header.
bool haveOrientation(std::string_view messages)
{
    while (true) {
        const auto type = takeNumber(messages);
        const auto size = takeNumber(messages);
        if (!type || !size || *size > messages.size())
            return false;
        if (*type == displayOrientation && changesOrientation(messages.substr(0, *size)))
            return true;
        messages.remove_prefix(*size);
    }
}

enum class UnitKind { Slice, Sei, Other };

UnitKind kindOf(unsigned int firstByte, bool isHevc)
{
    constexpr unsigned int h264Sei = 6;
    constexpr unsigned int lastH264Slice = 5;
    constexpr unsigned int hevcSei = 39;
    constexpr unsigned int lastHevcSlice = 31;
    const unsigned int type = isHevc ? firstByte >> 1U & 0x3FU : firstByte & 0x1FU;
    if (type == (isHevc ? hevcSei : h264Sei))
        return UnitKind::Sei;
    const bool isSlice = isHevc ? type <= lastHevcSlice : type >= 1 && type <= lastH264Slice;
    return isSlice ? UnitKind::Slice : UnitKind::Other;
}

/// Reads the configuration in the first sample entry of "stsd". Empty for other codecs. Ignores bytes behind
/// the last box of the entry, which QuickTime files contain.
std::optional<NalFormat> nalFormatIn(BoxReader& reader, const Box& formats)
{
    constexpr FileOffset versionAndCount = 8;
    constexpr FileOffset fieldsOfVideo = 78;
    const auto entries = reader.leadingBoxesIn(formats, versionAndCount);
    if (entries.empty())
        return std::nullopt;
    for (const Box& part : reader.leadingBoxesIn(entries.front(), fieldsOfVideo)) {
        const bool isHevc = part.is("hvcC");
        if (!isHevc && !part.is("avcC"))
            continue;
        const FileOffset place = isHevc ? 21 : 4; // the last two bits are the size of the length minus one
        const std::string byte = reader.contentOf(part, 1, place);
        if (!byte.empty())
            return NalFormat{isHevc, (byteAt(byte, 0) & 3U) + 1};
    }
    return std::nullopt;
}

/// The offset of the first sample in the track fragment. Empty if the fragment is of another track.
std::optional<FileOffset> firstSampleOf(
    BoxReader& reader, const Box& fragment, FileOffset movieFragment, std::uint32_t trackId)
{
    constexpr std::uint64_t hasOffset = 1; // the lowest flag of both boxes
    const auto parts = reader.boxesIn(fragment);
    const Box* header = parts ? onlyBox(*parts, "tfhd") : nullptr;
    if (header == nullptr || readBigEndian(reader.contentOf(*header, 4, 4)) != trackId)
        return std::nullopt;
    const auto run
        = std::find_if(parts->begin(), parts->end(), [](const Box& part) { return part.is("trun"); });
    if (run == parts->end())
        return std::nullopt;
    FileOffset offset = movieFragment;
    if ((readBigEndian(reader.contentOf(*header, 4)) & hasOffset) != 0)
        offset = static_cast<FileOffset>(readBigEndian(reader.contentOf(*header, 8, 8)));
    if ((readBigEndian(reader.contentOf(*run, 4)) & hasOffset) == 0)
        return std::nullopt;
    const auto distance = static_cast<std::int32_t>(readBigEndian(reader.contentOf(*run, 4, 8)));
    return offset >= 0 && offset < reader.fileSize() ? std::optional(offset + distance) : std::nullopt;
}

/// The offset of the first sample of the track in a fragmented file; 0 if there is none.
FileOffset firstSampleInFragments(BoxReader& reader, std::uint32_t trackId)
{
    const auto boxes = reader.boxesOfFile();
    if (!boxes)
        return 0;
    for (const Box& box : *boxes) {
        const auto parts = box.is("moof") ? reader.boxesIn(box) : std::nullopt;
        if (!parts)
            continue;
        for (const Box& part : *parts) {
            const auto sample
                = part.is("traf") ? firstSampleOf(reader, part, box.begin, trackId) : std::nullopt;
            if (sample)
                return *sample;
        }
    }
    return 0;
}

} // namespace

bool holdsOrientationMessage(std::string_view sample, const NalFormat& format)
{
    const std::size_t unitHeader = format.isHevc ? 2 : 1;
    while (sample.size() > format.lengthSize) {
        const std::uint64_t size = readBigEndian(sample.substr(0, format.lengthSize));
        sample.remove_prefix(format.lengthSize);
        const std::string_view unit = sample.substr(0, size);
        const UnitKind kind = unit.empty() ? UnitKind::Other : kindOf(byteAt(unit, 0), format.isHevc);
        if (kind == UnitKind::Slice)
            return false;
        if (kind == UnitKind::Sei && unit.size() > unitHeader
            && haveOrientation(withoutEscapes(unit.substr(unitHeader))))
            return true;
        sample.remove_prefix(unit.size());
    }
    return false;
}

bool hasOrientationMessage(int file, const Movie& movie)
{
    if (movie.videos.empty())
        return false;
    const VideoTrack& video = mainVideo(movie);
    BoxReader reader(file);
    const auto format = video.formats ? nalFormatIn(reader, *video.formats) : std::nullopt;
    if (!format)
        return false;
    Box sample;
    sample.content = video.firstSample != 0 ? video.firstSample : firstSampleInFragments(reader, video.id);
    if (sample.content <= 0 || sample.content >= reader.fileSize())
        return false;
    sample.end = reader.fileSize();
    return holdsOrientationMessage(reader.contentOf(sample, mostSampleBytes), *format);
}
