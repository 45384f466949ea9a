// SPDX-License-Identifier: MIT
#pragma once

#include "probe/JSON.h"

#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace tarnwell
{

/// A property of a track: text, seconds, or the stream's object in the report.
using TrackValue = std::variant<std::string, double, JSON>;

/// The properties of one track, by keys such as "trackType" and "trackCodec".
using TrackInfo = std::map<std::string, TrackValue, std::less<>>;

enum class TrackType { Video, Audio, Subtitle, Poster, Other };

/// Classifies a stream object of the report.
TrackType trackTypeOf(const JSON& stream);

/// False for "0/0", which marks still pictures such as cover art.
bool hasFrameRate(const JSON& stream);

/// Whether a video stream is a video track even without a frame rate: H.264, Theora and Windows Media
/// Video 9.
bool isVideoByCodec(const JSON& stream);

/// The value of "trackType": "Video", "Audio", "Subtitle", "Poster" or "Other".
std::string trackTypeName(TrackType type);

/// The texts under "trackCodec" in track order. Skips tracks without the key and values of other types.
std::vector<std::string> trackCodecs(const std::vector<TrackInfo>& tracks);

} // namespace tarnwell
