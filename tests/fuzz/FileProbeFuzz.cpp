// SPDX-License-Identifier: MIT
// Input: any bytes as sniffer's report. The FileProbe is consistent, and the program stops only by the
// documented fatal rules.
#include "probe/FileProbe.h"
#include "probe/JSON.h"
#include "tests/fuzz/SnifferOutput.h"
#include "tests/fuzz/Verify.h"
#include "tools/Report.h"
#include "util/Decimal.h"
#include "util/Unicode.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace tarnwell::test
{

namespace
{

constexpr std::int64_t stereo = 2;

/// Whether a channel count is not a number, which is a fatal error. ffprobe always prints a number.
bool hasWrongChannels(const JSON& streams)
{
    for (std::size_t index = 0; index < streams.count(); ++index) {
        const JSON channels = streams[index]["channels"];
        if (!channels.isNull() && !channels.optionalNumber())
            return true;
        if (channels.integer() > stereo)
            return false; // FileProbe stops at the first track with more than two channels
    }
    return false;
}

/// Whether a duration exceeds 64 bits, which is a fatal error. A file can make ffprobe print such a duration,
/// so sniffer must remove it.
bool hasEndlessDuration(const JSON& streams)
{
    for (std::size_t index = 0; index < streams.count(); ++index) {
        if (!fitsInteger(streams[index]["duration"].number()))
            return true;
    }
    return false;
}

void checkTrack(const TrackInfo& track)
{
    constexpr std::array types = {"Video", "Audio", "Subtitle", "Poster", "Other"};
    constexpr std::array texts = {"trackType", "trackCodec", "trackID", "trackPresentInfile",
        "trackSpecialInfo", "trackDurationHuman", "trackLanguage"};
    verify(track.size() == texts.size() + 2, "a track has nine entries");
    for (const char* key : texts) {
        const auto entry = track.find(key);
        verify(entry != track.end() && std::holds_alternative<std::string>(entry->second), key);
        verify(isValidUtf8(std::get<std::string>(entry->second)), "track texts are UTF-8");
    }
    verify(std::holds_alternative<double>(track.at("trackDuration")), "a track duration is a number");
    verify(std::holds_alternative<JSON>(track.at("trackDictionary")), "a track contains its JSON object");
    const auto& type = std::get<std::string>(track.at("trackType"));
    verify(std::find(types.begin(), types.end(), type) != types.end(), "a track has one of five types");
}

void checkMetadata(const FileProbe& probe)
{
    constexpr std::array labels = {"Title", "Tagline", "Synopsis", "Release Date", "Genre", "HD",
        "Media Kind", "Composer", "Rating", "Encoder", "Copyright", "Comment"};
    verify(probe.metadata.size() == labels.size(), "there are twelve entries of metadata");
    for (std::size_t place = 0; place < labels.size(); ++place) {
        const auto& entry = probe.metadata[place];
        verify(entry.size() == 2 && entry.at("key") == labels[place], "metadata entries have a fixed order");
        verify(isValidUtf8(entry.at("value")), "texts are UTF-8");
    }
}

void checkDescription(const FileProbe& probe, const JSON& report)
{
    const std::size_t streams = report["streams"].count();
    verify(probe.hasErrors == report.hasMember("error"), "hasErrors follows the report");
    verify(probe.isValidMediaFile == (!probe.hasErrors && streams > 0),
        "a report with streams and without an error is valid");
    verify(probe.hasVideoTrack == probe.videoWidth.has_value()
            && probe.hasVideoTrack == probe.videoHeight.has_value()
            && probe.hasVideoTrack == probe.videoRatio.has_value(),
        "there is a size if and only if there is a video track");
    verify(!isSuitable(probe) || probe.hasVideoTrack, "a suitable file has a video track");
    if (!probe.isValidMediaFile) {
        verify(!isSuitable(probe) && !probe.isEncrypted && !probe.hasVideoTrack && !probe.hasAudioTrack
                && !probe.hasSubtitleTrack && !probe.hasAudioTrackWhichHasMoreThanTwoChannels
                && probe.duration == 0 && probe.bitRate == 0 && probe.tagRotateValue == 0
                && probe.tracksInfo.empty() && probe.metadata.empty(),
            "an invalid file has default values");
        return;
    }
    verify(probe.numberOfStreams == static_cast<std::int64_t>(streams) && probe.tracksInfo.size() == streams,
        "each stream is a track");
    std::for_each(probe.tracksInfo.begin(), probe.tracksInfo.end(), checkTrack);
    checkMetadata(probe);
}

FileProbe descriptionOf(const std::string& report)
{
    setSnifferOutput(report);
    return {"/dev/null", ToolContext{Bundle("/nowhere")}};
}

JSON parsed(const std::string& report)
{
    const auto outcome = JSON::parse(report);
    return std::holds_alternative<JSON>(outcome) ? std::get<JSON>(outcome) : JSON();
}

void checkSame(const FileProbe& before, const FileProbe& after)
{
    verify(before.isEncrypted == after.isEncrypted && before.hasVideoTrack == after.hasVideoTrack
            && before.hasAudioTrack == after.hasAudioTrack
            && before.hasSubtitleTrack == after.hasSubtitleTrack && before.duration == after.duration
            && before.bitRate == after.bitRate && before.numberOfStreams == after.numberOfStreams
            && before.metadata == after.metadata
            && trackCodecs(before.tracksInfo) == trackCodecs(after.tracksInfo),
        "sniffer changes only the rotation");
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    const std::string report = bytesOf(data, size);
    const tarnwell::JSON json = parsed(report);
    if (hasWrongChannels(json["streams"]))
        return -1; // excludes the input from the corpus
    // sniffer's parser rejects numbers beyond the range of double. ffprobe prints such numbers only in
    // strings.
    if (report.find('\0') == std::string::npos && json.count() > 0 && !nlohmann::json::accept(report))
        return -1;
    const std::string delivered = withTrueRotation(report);
    verify(!hasEndlessDuration(parsed(delivered)["streams"]), "sniffer prints no duration beyond 64 bits");
    const tarnwell::FileProbe after = descriptionOf(delivered);
    checkDescription(after, parsed(delivered));
    verify(after.tagRotateValue >= 0 && after.tagRotateValue < 360, "sniffer's rotation tag is 0 to 359");
    if (hasEndlessDuration(json["streams"]))
        return 0;
    const tarnwell::FileProbe before = descriptionOf(report);
    checkDescription(before, json);
    checkSame(before, after);
    return 0;
}
