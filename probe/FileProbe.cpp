// SPDX-License-Identifier: MIT
#include "probe/FileProbe.h"

#include "platform/Diagnostics.h"
#include "platform/FatalError.h"
#include "platform/FileHandle.h"
#include "platform/Process.h"
#include "probe/ContainerMetadata.h"
#include "probe/HumanReadable.h"
#include "probe/ProbeArguments.h"

#include <memory>

namespace tarnwell
{

namespace
{

/// The report on a file as `sniffer` printed it; empty where it could not be started.
std::string snifferReport(const std::string& path, const ToolContext& tools)
{
    Process sniffer;
    const auto output = std::make_shared<Pipe>();
    sniffer.setExecutable(required(tools.bundle.pathForResource("sniffer")));
    sniffer.setArguments(probeArguments(path));
    sniffer.setStandardOutput(output);
    if (const auto error = sniffer.launch())
        printLine("sniffer could not be started: " + error.message());
    std::string report;
    // The pipe is emptied while the tool runs: one that prints more than a pipe holds would wait for ever.
    tools.wait([&] {
        report = output->fileHandleForReading()->readDataToEndOfFile();
        sniffer.waitUntilExit();
    });
    return report;
}

bool isPictureTrack(const JSON& stream)
{
    return stream["codec_type"] == "video" && !(stream["avg_frame_rate"] == "0/0");
}

template <typename Predicate>
bool anyStream(const JSON& streams, Predicate predicate)
{
    for (std::size_t index = 0; index < streams.count(); ++index) {
        if (predicate(streams[index]))
            return true;
    }
    return false;
}

} // namespace

FileProbe::FileProbe(const std::string& path, const ToolContext& tools)
    : fileSize(tarnwell::fileSize(path))
    , fileSizeHuman(humanFileSize(path))
    , fileFullPath(path)
    , fileFullURL(path)
{
    const auto parsed = JSON::parse(snifferReport(path, tools));
    if (const auto* error = std::get_if<std::string>(&parsed))
        printLine(*error);
    else
        readReport(std::get<JSON>(parsed));
}

void FileProbe::readReport(const JSON& report)
{
    hasErrors = report.hasMember("error");
    if (hasErrors)
        return;
    const JSON streams = report["streams"];
    if (streams.count() == 0)
        return;
    numberOfStreams = static_cast<std::int64_t>(streams.count());
    // A text file is no media file, whatever a demuxer makes of it.
    if (lowerCased(required(fileFullURL).pathExtension()) == "txt")
        return;
    isValidMediaFile = true;
    readFlags(streams);
    duration = report["format"]["duration"].number();
    bitRate = report["format"]["bit_rate"].integer();
    metadata = containerMetadata(report["format"]["tags"]);
    readTracks(streams);
}

void FileProbe::readFlags(const JSON& streams)
{
    isEncrypted = anyStream(streams,
        [](const JSON& stream) { return stream["codec_type"] == "video" && stream["codec_name"].isNull(); });
    readFirstVideoTrack(streams);
    hasAudioTrack = anyStream(streams, [](const JSON& stream) { return stream["codec_type"] == "audio"; });
    readChannels(streams);
    hasSubtitleTrack = anyStream(streams, [](const JSON& stream) {
        return stream["codec_type"] == "subtitle" && trackTypeOf(stream) == TrackType::Subtitle;
    });
}

void FileProbe::readFirstVideoTrack(const JSON& streams)
{
    for (std::size_t index = 0; index < streams.count(); ++index) {
        const JSON stream = streams[index];
        if (!isPictureTrack(stream))
            continue;
        tagRotateValue = stream["tags"]["rotate"].integer();
        readDisplaySize(stream);
        return;
    }
}

void FileProbe::readChannels(const JSON& streams)
{
    constexpr std::int64_t stereo = 2;
    hasAudioTrackWhichHasMoreThanTwoChannels = anyStream(streams, [](const JSON& stream) {
        const JSON channels = stream["channels"];
        if (channels.isNull())
            return false;
        if (!channels.optionalNumber())
            fatalError();
        return channels.integer() > stereo;
    });
}

void FileProbe::readTracks(const JSON& streams)
{
    for (std::size_t index = 0; index < streams.count(); ++index)
        tracksInfo.push_back(trackInfoOf(streams[index]));
}

void FileProbe::readDisplaySize(const JSON& stream)
{
    hasVideoTrack = true;
    videoWidth = stream["width"].integer();
    videoHeight = stream["height"].integer();
    const JSON rotate = stream["tags"]["rotate"];
    if (rotate == "90" || rotate == "270")
        std::swap(videoWidth, videoHeight);
    videoRatio = static_cast<double>(*videoWidth) / static_cast<double>(*videoHeight);
}

TrackInfo FileProbe::trackInfoOf(const JSON& stream)
{
    const TrackType type = trackTypeOf(stream);
    // Of several such streams the last one gives the size, and an entry shows the size as it stands at its
    // turn.
    if (type == TrackType::Video && isVideoByCodec(stream))
        readDisplaySize(stream);
    const double seconds = stream["duration"].number();
    return {
        {"trackType", trackTypeName(type)},
        {"trackCodec", stream["codec_name"].text()},
        {"trackID", stream["index"].text()},
        {"trackPresentInfile", required(fileFullPath)},
        {"trackSpecialInfo", specialInfoOf(stream, type)},
        {"trackDuration", seconds},
        {"trackDurationHuman", humanDuration(seconds)},
        {"trackLanguage", stream["tags"]["language"].text()},
        {"trackDictionary", stream},
    };
}

std::string FileProbe::specialInfoOf(const JSON& stream, TrackType type) const
{
    switch (type) {
    case TrackType::Video:
        return std::to_string(required(videoWidth)) + "x" + std::to_string(required(videoHeight));
    case TrackType::Audio:
        return stream["channel_layout"].text();
    case TrackType::Subtitle:
        return stream["tags"]["language"].text();
    case TrackType::Poster:
        return stream["width"].text() + "x" + stream["height"].text();
    case TrackType::Other:
        return stream["codec_tag_string"].text();
    }
    fatalError();
}

} // namespace tarnwell
