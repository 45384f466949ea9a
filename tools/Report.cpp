// SPDX-License-Identifier: MIT
#include "tools/Report.h"

#include "tools/ReportSize.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>

namespace
{

using Json = nlohmann::ordered_json; // keeps the report's order

constexpr const char* rotateTag = "rotate";
constexpr double integerLimit = 9223372036854775808.0; // 2^63
constexpr double mostPixelAspect = 10000; // larger values, and values below its inverse, are invalid

Json parsed(const std::string& report)
{
    constexpr bool mayThrow = false;
    if (report.find('\0') != std::string::npos)
        return Json(Json::value_t::discarded); // for the parser a zero is the end of the report
    return Json::parse(report, nullptr, mayThrow);
}

bool isText(const Json& object, const char* member, const char* text)
{
    const auto entry = object.find(member);
    return entry != object.end() && entry->is_string() && entry->get_ref<const std::string&>() == text;
}

bool isVideo(const Json& stream)
{
    return stream.is_object() && isText(stream, "codec_type", "video");
}

constexpr const char* matrixOfStream = "Display Matrix";
constexpr const char* matrixOfFrame = "3x3 displaymatrix";

/// The text of the first side data of that type; empty for none.
std::string matrixTextOf(const Json& object, const char* type)
{
    const auto list = object.find("side_data_list");
    if (list == object.end() || !list->is_array())
        return {};
    for (const Json& data : *list) {
        if (!data.is_object() || !isText(data, "side_data_type", type))
            continue;
        const auto numbers = data.find("displaymatrix");
        if (numbers != data.end() && numbers->is_string())
            return numbers->get_ref<const std::string&>();
    }
    return {};
}

void setTrueRotation(Json& stream)
{
    const auto matrix = parseDisplayMatrix(matrixTextOf(stream, matrixOfStream));
    if (matrix) {
        if (!stream.contains("tags") || !stream["tags"].is_object())
            stream["tags"] = Json::object();
        stream["tags"][rotateTag] = std::to_string(rotationTag(*matrix));
    } else if (stream.contains("tags") && stream["tags"].is_object()) {
        stream["tags"].erase(rotateTag);
    }
}

bool isEndless(const Json& duration)
{
    double seconds = 0;
    if (duration.is_number())
        seconds = duration.get<double>();
    if (duration.is_string()) // strtod expects a dot: the tools do not change the locale "C"
        seconds = std::strtod(duration.get_ref<const std::string&>().c_str(), nullptr);
    return !(seconds < integerLimit && seconds >= -integerLimit);
}

/// Removes a duration that does not fit 64 bits. Returns whether there was one.
bool removeEndlessDuration(Json& stream)
{
    const auto duration = stream.find("duration");
    if (duration == stream.end() || !isEndless(*duration))
        return false;
    stream.erase(duration);
    return true;
}

int integerOf(const Json& object, const char* member)
{
    const auto entry = object.find(member);
    return entry != object.end() && entry->is_number_integer() ? entry->get<int>() : 0;
}

std::string textOf(const Json& object, const char* member)
{
    const auto entry = object.find(member);
    return entry != object.end() && entry->is_string() ? entry->get<std::string>() : std::string();
}

/// Reads "64:45". 1 for an unknown ratio, which ffprobe prints as "0:1" or not at all.
double pixelAspectOf(const Json& stream)
{
    const std::string text = textOf(stream, "sample_aspect_ratio");
    const auto colon = text.find(':');
    if (colon == std::string::npos)
        return 1;
    const double width = std::strtod(text.c_str(), nullptr);
    const double height = std::strtod(text.c_str() + colon + 1, nullptr);
    const double ratio = height > 0 ? width / height : 0;
    return ratio >= 1 / mostPixelAspect && ratio <= mostPixelAspect ? ratio : 1;
}

VideoFacts videoFactsIn(const Json& stream)
{
    const std::string numbers = matrixTextOf(stream, matrixOfStream);
    const auto matrix = parseDisplayMatrix(numbers);
    return {matrix ? rotationTag(*matrix) : 0, parseDecodedMatrix(numbers), integerOf(stream, "width"),
        integerOf(stream, "height"), pixelAspectOf(stream)};
}

bool isAttachedPicture(const Json& stream)
{
    const auto disposition = stream.find("disposition");
    return disposition != stream.end() && disposition->is_object()
        && integerOf(*disposition, "attached_pic") == 1;
}

bool hasFrameRate(const Json& stream)
{
    return !isText(stream, "avg_frame_rate", "0/0");
}

/// Null if the condition holds for no video stream.
template <typename Condition>
const Json* firstVideo(const Json& streams, Condition condition)
{
    const auto found = std::find_if(streams.begin(), streams.end(),
        [&](const Json& stream) { return isVideo(stream) && condition(stream); });
    return found != streams.end() ? &*found : nullptr;
}

/// The stream whose tag "rotate" the application reads; it can be that of chapter pictures.
const Json* taggedVideoIn(const Json& streams)
{
    const Json* first = firstVideo(streams, hasFrameRate);
    return first != nullptr ? first : firstVideo(streams, [](const Json&) { return true; });
}

/// See VideoFacts. Null if there is no video stream.
const Json* mainVideoIn(const Json& streams)
{
    const Json* film = firstVideo(
        streams, [](const Json& stream) { return hasFrameRate(stream) && !isAttachedPicture(stream); });
    return film != nullptr ? film : taggedVideoIn(streams);
}

/// Null for text that is no report.
const Json* streamsIn(const Json& report)
{
    const auto streams = report.is_object() ? report.find("streams") : report.end();
    return streams != report.end() && streams->is_array() ? &*streams : nullptr;
}

/// Empty for text that is no report.
Json listIn(const Json& report, const char* name)
{
    const auto list = report.is_object() ? report.find(name) : report.end();
    return list != report.end() && list->is_array() ? *list : Json::array();
}

MediaStream::Kind kindOf(const Json& stream)
{
    if (isVideo(stream))
        return MediaStream::Kind::Video;
    if (isText(stream, "codec_type", "audio"))
        return MediaStream::Kind::Sound;
    return isText(stream, "codec_type", "subtitle") ? MediaStream::Kind::Subtitle : MediaStream::Kind::Other;
}

MediaStream streamOf(const Json& stream)
{
    MediaStream result;
    result.index = integerOf(stream, "index");
    result.kind = kindOf(stream);
    result.codec = textOf(stream, "codec_name");
    if (!isText(stream, "codec_tag", "0x0000"))
        result.tag = textOf(stream, "codec_tag_string");
    const std::string id = textOf(stream, "id"); // "0x1"
    constexpr int anyBase = 0;
    result.trackId = static_cast<std::uint32_t>(std::strtoul(id.c_str(), nullptr, anyBase));
    result.channels = integerOf(stream, "channels");
    result.channelLayout = textOf(stream, "channel_layout");
    if (result.channelLayout == "unknown")
        result.channelLayout.clear();
    result.isAttachedPicture = isAttachedPicture(stream);
    const auto disposition = stream.find("disposition");
    result.isDefault
        = disposition != stream.end() && disposition->is_object() && integerOf(*disposition, "default") == 1;
    return result;
}

std::vector<std::pair<std::string, std::string>> fileTagsIn(const Json& report)
{
    std::vector<std::pair<std::string, std::string>> result;
    const auto format = report.find("format");
    if (format == report.end() || !format->is_object())
        return result;
    const auto tags = format->find("tags");
    if (tags == format->end() || !tags->is_object())
        return result;
    for (const auto& [name, value] : tags->items()) {
        if (value.is_string())
            result.emplace_back(name, value.get<std::string>());
    }
    return result;
}

} // namespace

std::string withTrueRotation(const std::string& originalReport)
{
    const std::string report = limitedReport(originalReport);
    Json json = parsed(report);
    if (!json.is_object() || !json.contains("streams") || !json["streams"].is_array())
        return report;
    bool isChanged = false;
    for (Json& stream : json["streams"]) {
        if (stream.is_object() && removeEndlessDuration(stream))
            isChanged = true;
        if (!isVideo(stream))
            continue;
        setTrueRotation(stream);
        isChanged = true;
    }
    if (!isChanged)
        return report;
    constexpr bool ensureAscii = false;
    constexpr int indentation = 4;
    return json.dump(indentation, ' ', ensureAscii, Json::error_handler_t::replace) + '\n';
}

VideoFacts videoFactsOf(const std::string& report)
{
    return mediaFactsOf(report).video;
}

MediaFacts mediaFactsOf(const std::string& report)
{
    const Json json = parsed(limitedReport(report));
    const Json* streams = streamsIn(json);
    if (streams == nullptr)
        return {};
    MediaFacts facts;
    if (const Json* video = mainVideoIn(*streams)) {
        facts.video = videoFactsIn(*video);
        facts.video.rotation = videoFactsIn(*taggedVideoIn(*streams)).rotation;
        facts.mainVideo = streamOf(*video);
    }
    for (const Json& stream : *streams) {
        if (stream.is_object())
            facts.streams.push_back(streamOf(stream));
    }
    facts.tags = fileTagsIn(json);
    return facts;
}

FrameOrientation frameOrientationOf(const std::string& report)
{
    FrameOrientation orientation;
    const Json json = parsed(limitedReport(report));
    for (const Json& frame : listIn(json, "frames")) {
        const std::string text = frame.is_object() ? matrixTextOf(frame, matrixOfFrame) : "";
        orientation.matrix = parseDecodedMatrix(text);
        if (orientation.matrix)
            break;
    }
    using Version = std::pair<int, int>; // of libavfilter
    constexpr Version ofFfmpeg50 = {8, 0};
    constexpr Version ofFfmpeg61 = {9, 12};
    for (const Json& library : listIn(json, "library_versions")) {
        if (!library.is_object() || !isText(library, "name", "libavfilter"))
            continue;
        const Version version = {integerOf(library, "major"), integerOf(library, "minor")};
        orientation.isObeyed = version >= ofFfmpeg50;
        orientation.mayBeOfContainer = version >= ofFfmpeg61;
    }
    return orientation;
}
