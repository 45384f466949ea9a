// SPDX-License-Identifier: MIT
#include "probe/TrackInfo.h"

#include "platform/FatalError.h"

namespace tarnwell
{

namespace
{

bool isMotionJpegTrackOfQuickTime(const JSON& stream)
{
    return stream["codec_name"] == "mjpeg" && stream["codec_tag_string"] == "jpeg";
}

bool isReadableSubtitle(const JSON& stream)
{
    return stream["codec_tag_string"] != "text" && !stream["codec_name"].isNull();
}

bool isUntaggedPicture(const JSON& stream)
{
    return stream["codec_tag_string"] == "[0][0][0][0]"
        && (stream["codec_name"] == "mjpeg" || stream["codec_name"] == "png");
}

TrackType videoTrackTypeOf(const JSON& stream)
{
    if (isMotionJpegTrackOfQuickTime(stream))
        return TrackType::Other;
    if (isVideoByCodec(stream) || hasFrameRate(stream))
        return TrackType::Video;
    return isUntaggedPicture(stream) ? TrackType::Poster : TrackType::Other;
}

} // namespace

bool hasFrameRate(const JSON& stream)
{
    return stream["avg_frame_rate"] != "0/0";
}

bool isVideoByCodec(const JSON& stream)
{
    const JSON codec = stream["codec_name"];
    return codec == "h264" || codec == "theora" || codec == "wmv3" || stream["codec_tag_string"] == "WMV3";
}

TrackType trackTypeOf(const JSON& stream)
{
    const JSON kind = stream["codec_type"];
    if (kind == "video")
        return videoTrackTypeOf(stream);
    if (kind == "audio")
        return TrackType::Audio;
    if (kind == "subtitle" && isReadableSubtitle(stream))
        return TrackType::Subtitle;
    return TrackType::Other;
}

std::string trackTypeName(TrackType type)
{
    switch (type) {
    case TrackType::Video:
        return "Video";
    case TrackType::Audio:
        return "Audio";
    case TrackType::Subtitle:
        return "Subtitle";
    case TrackType::Poster:
        return "Poster";
    case TrackType::Other:
        return "Other";
    }
    fatalError();
}

std::vector<std::string> trackCodecs(const std::vector<TrackInfo>& tracks)
{
    std::vector<std::string> codecs;
    for (const auto& track : tracks) {
        const auto entry = track.find("trackCodec");
        if (entry == track.end())
            continue;
        if (const auto* codec = std::get_if<std::string>(&entry->second))
            codecs.push_back(*codec);
    }
    return codecs;
}

} // namespace tarnwell
