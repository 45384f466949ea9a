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

/// The description of one media file, as the probe tool reports it. Construction does all the work and never
/// fails as a whole: every problem shows in the flags. Nothing writes a field afterwards; holders keep it
/// const.
class FileProbe
{
public:
    /// Runs `sniffer` on the file at `path` (raw bytes) and waits for it as `tools` says. A missing tool
    /// stops the program; one that cannot be started, or reports nonsense, prints a line and leaves the flags
    /// false.
    FileProbe(const std::string& path, const ToolContext& tools);

    bool hasErrors = false;
    /// The report lists a stream and no error, and the file is not named as a text. The fields from
    /// `isEncrypted` to `metadata`, but for `numberOfStreams`, are filled only then.
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
    /// Pixels of the picture as it is shown, quarter turns of the rotation tag applied. All three or none.
    std::optional<std::int64_t> videoWidth;
    std::optional<std::int64_t> videoHeight;
    std::optional<double> videoRatio;
    std::int64_t tagRotateValue = 0; // degrees
    std::vector<TrackInfo> tracksInfo;
    /// Twelve entries, each with a "key" and a "value".
    std::vector<std::map<std::string, std::string>> metadata;
    std::optional<std::uint64_t> fileSize; // bytes
    std::optional<std::string> fileSizeHuman;
    std::optional<std::string> fileFullPath; // raw bytes, as given
    std::optional<FileURL> fileFullURL;

private:
    void readReport(const JSON& report);
    void readFlags(const JSON& streams);
    void readFirstVideoTrack(const JSON& streams);
    void readChannels(const JSON& streams);
    void readTracks(const JSON& streams);
    void readDisplaySize(const JSON& stream);
    TrackInfo trackInfoOf(const JSON& stream);
    std::string specialInfoOf(const JSON& stream, TrackType type) const;
};

} // namespace tarnwell
