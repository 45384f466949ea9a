// SPDX-License-Identifier: MIT
// Input: any bytes as ffprobe's report. sniffer sets the rotation tags of video streams, removes durations
// beyond 64 bits, and changes nothing else.
#include "tests/fuzz/Verify.h"
#include "tools/Report.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace tarnwell::test
{

namespace
{

using Json = nlohmann::ordered_json;

bool isVideo(const Json& stream)
{
    return stream.is_object() && stream.contains("codec_type") && stream["codec_type"] == "video";
}

/// Whether the stream's duration, a number or a string that begins with one, exceeds 64 bits.
bool isEndless(const Json& stream)
{
    constexpr double integerLimit = 9223372036854775808.0; // 2^63
    if (!stream.is_object() || !stream.contains("duration"))
        return false;
    const Json& duration = stream["duration"];
    const double seconds = duration.is_number() ? duration.get<double>()
        : duration.is_string()                  ? std::strtod(duration.get<std::string>().c_str(), nullptr)
                                                : 0;
    return !(seconds < integerLimit && seconds >= -integerLimit);
}

bool isReport(const Json& json)
{
    return json.is_object() && json.contains("streams") && json["streams"].is_array();
}

bool hasStream(const Json& json, bool (*isMeant)(const Json&))
{
    return isReport(json) && std::any_of(json["streams"].begin(), json["streams"].end(), isMeant);
}

/// The report without what sniffer may change: durations beyond 64 bits, the tag "rotate", and
/// objects "tags" that contain nothing else.
std::string restOf(Json report)
{
    for (Json& stream : report["streams"]) {
        if (isEndless(stream))
            stream.erase("duration");
        if (!isVideo(stream) || !stream.contains("tags"))
            continue;
        if (stream["tags"].is_object())
            stream["tags"].erase("rotate");
        if (!stream["tags"].is_object() || stream["tags"].empty())
            stream.erase("tags");
    }
    return report.dump();
}

void checkTag(const Json& stream)
{
    if (!isVideo(stream) || !stream.contains("tags") || !stream["tags"].is_object()
        || !stream["tags"].contains("rotate"))
        return;
    verify(stream["tags"]["rotate"].is_string(), "the tag is a string");
    const std::string tag = stream["tags"]["rotate"];
    verify(tag.size() < 4 && tag.find_first_not_of("0123456789") == std::string::npos, "the tag is a number");
    verify(std::to_string(std::stoi(tag)) == tag && std::stoi(tag) < 360, "the tag is 0 to 359");
    verify(stream.contains("side_data_list"), "a tag requires a display matrix");
}

bool isSame(const VideoFacts& left, const VideoFacts& right)
{
    return left.width == right.width && left.height == right.height
        && left.decoded.has_value() == right.decoded.has_value()
        && (!left.decoded || rotationTag(*left.decoded) == rotationTag(*right.decoded));
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    const std::string report = bytesOf(data, size);
    const std::string rewritten = withTrueRotation(report);
    const Json before = Json::parse(report, nullptr, false);
    if (!hasStream(before, isVideo) && (!hasStream(before, isEndless) || rewritten == report)) {
        verify(rewritten == report, "a report without a video or a long duration is unchanged");
        return 0;
    }
    verify(rewritten.back() == '\n', "a report ends with a newline");
    const Json after = Json::parse(rewritten, nullptr, false);
    verify(!after.is_discarded() && restOf(before) == restOf(after), "only the rotation changes");
    std::for_each(after["streams"].begin(), after["streams"].end(), checkTag);
    verify(withTrueRotation(rewritten) == rewritten, "a second call changes nothing");
    verify(isSame(videoFactsOf(report), videoFactsOf(rewritten)), "the video's facts are unchanged");
    return 0;
}
