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

/// A fact about a track: a text, a number of seconds, or the report's own object.
using TrackValue = std::variant<std::string, double, JSON>;

/// The facts about one track, by keys such as "trackType" and "trackCodec".
using TrackInfo = std::map<std::string, TrackValue, std::less<>>;

/// The kind of a track, for "trackType".
enum class TrackType { Video, Audio, Subtitle, Poster, Other };

/// The kind of the track that a stream object of the report describes.
TrackType trackTypeOf(const JSON& stream);

/// Whether a stream of that kind carries the picture whatever its frame rate says: H.264, Theora and Windows
/// Media Video 9.
bool isVideoByCodec(const JSON& stream);

/// "Video", "Audio", "Subtitle", "Poster" or "Other".
std::string trackTypeName(TrackType type);

/// The codec names of the tracks in their order; tracks without one, or with something that is no text, are
/// passed over.
std::vector<std::string> trackCodecs(const std::vector<TrackInfo>& tracks);

} // namespace tarnwell
