// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileURL.h"
#include "platform/ToolContext.h"
#include "probe/TrackInfo.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarnwell
{

/// The description of one media file. The constructor fills all fields and reports problems in the flags;
/// owners keep the object const.
class FileProbe
{
public:
    /// Runs `sniffer` on the file at `path` (raw bytes) and blocks with `tools.wait` until it exits. A
    /// missing sniffer stops the program. If sniffer cannot be started or prints no JSON, prints the reason
    /// and leaves all flags false.
    FileProbe(const std::string& path, const ToolContext& tools);

    bool hasErrors = false;
    /// The report has a stream and no error, and the extension is not "txt". If false, the fields from
    /// `isEncrypted` to `metadata` have their defaults, except `numberOfStreams`.
    bool isValidMediaFile = false;
    /// A video stream has no codec name.
    bool isEncrypted = false;
    std::int64_t numberOfStreams = 0;
    bool hasVideoTrack = false;
    bool hasAudioTrack = false;
    bool hasSubtitleTrack = false;
    bool hasAudioTrackWhichHasMoreThanTwoChannels = false;
    double duration = 0; // seconds, of the container
    std::int64_t bitRate = 0; // bits per second, of the container
    /// Display size in pixels, after quarter turns of the rotation tag. All three are present or none.
    std::optional<std::int64_t> videoWidth;
    std::optional<std::int64_t> videoHeight;
    std::optional<double> videoRatio;
    std::int64_t tagRotateValue = 0; // degrees
    std::vector<TrackInfo> tracksInfo;
    /// Twelve entries, each with the keys "key" and "value".
    std::vector<std::map<std::string, std::string>> metadata;
    std::optional<std::uint64_t> fileSize; // bytes
    std::optional<std::string> fileSizeHuman;
    std::optional<std::string> fileFullPath; // raw bytes, as given
    std::optional<FileURL> fileFullURL;

private:
    void readReport(const JSON& report);
    void readFlags(const std::vector<JSON>& streams);
    void readDisplaySize(const JSON& stream);
    TrackInfo trackInfoOf(const JSON& stream);
    std::string specialInfoOf(const JSON& stream, TrackType type) const;
};

/// Whether the program can turn the file: readable, not encrypted, with a video track whose width is not 0.
/// An absent width counts as not 0.
bool isSuitable(const FileProbe& probe);

/// The arguments of sniffer for a JSON report on the file at `path` (raw bytes).
std::vector<std::string> probeArguments(const std::string& path);

} // namespace tarnwell
