// SPDX-License-Identifier: MIT
#include "probe/FileProbe.h"

#include "platform/Diagnostics.h"
#include "platform/FatalError.h"
#include "platform/FileHandle.h"
#include "platform/Process.h"
#include "probe/ContainerMetadata.h"
#include "probe/HumanReadable.h"
#include "util/Decimal.h"

#include <algorithm>
#include <memory>

namespace tarnwell
{

namespace
{

// Returns the report that sniffer prints; empty if sniffer cannot be started.
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
    // Reads while the tool runs: a tool that fills the pipe blocks until it is read.
    tools.wait([&] {
        report = output->fileHandleForReading()->readDataToEndOfFile();
        sniffer.waitUntilExit();
    });
    return report;
}

std::vector<JSON> elementsOf(const JSON& array)
{
    std::vector<JSON> elements;
    for (std::size_t index = 0; index < array.count(); ++index)
        elements.push_back(array[index]);
    return elements;
}

bool hasMoreThanTwoChannels(const JSON& stream)
{
    constexpr std::int64_t stereo = 2;
    const JSON channels = stream["channels"];
    return !channels.isNull() && truncated(required(channels.optionalNumber())) > stereo;
}

} // namespace

std::vector<std::string> probeArguments(const std::string& path)
{
    return {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
        "-show_error", path};
}

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
    const std::vector<JSON> streams = elementsOf(report["streams"]);
    if (streams.empty())
        return;
    numberOfStreams = static_cast<std::int64_t>(streams.size());
    // ffprobe reads text files as video, for example with its demuxer for ANSI art.
    if (lowerCased(required(fileFullURL).pathExtension()) == "txt")
        return;
    isValidMediaFile = true;
    readFlags(streams);
    const JSON format = report["format"];
    duration = format["duration"].number();
    bitRate = format["bit_rate"].integer();
    metadata = containerMetadata(format["tags"]);
    for (const JSON& stream : streams)
        tracksInfo.push_back(trackInfoOf(stream));
}

void FileProbe::readFlags(const std::vector<JSON>& streams)
{
    const auto anyStream
        = [&streams](auto predicate) { return std::any_of(streams.begin(), streams.end(), predicate); };
    isEncrypted = anyStream(
        [](const JSON& stream) { return stream["codec_type"] == "video" && stream["codec_name"].isNull(); });
    const auto video = std::find_if(streams.begin(), streams.end(),
        [](const JSON& stream) { return stream["codec_type"] == "video" && hasFrameRate(stream); });
    if (video != streams.end()) {
        tagRotateValue = (*video)["tags"]["rotate"].integer();
        readDisplaySize(*video);
    }
    hasAudioTrack = anyStream([](const JSON& stream) { return trackTypeOf(stream) == TrackType::Audio; });
    hasAudioTrackWhichHasMoreThanTwoChannels = anyStream(hasMoreThanTwoChannels);
    hasSubtitleTrack
        = anyStream([](const JSON& stream) { return trackTypeOf(stream) == TrackType::Subtitle; });
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
    // The last such stream determines the size; a track's special info has the size up to that track.
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

bool isSuitable(const FileProbe& probe)
{
    return probe.isValidMediaFile && !probe.hasErrors && !probe.isEncrypted && probe.hasVideoTrack
        && probe.videoWidth != 0;
}

} // namespace tarnwell
