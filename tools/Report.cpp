// SPDX-License-Identifier: MIT
#include "tools/Report.h"

#include <nlohmann/json.hpp>

#include <cstdlib>

namespace
{

using Json = nlohmann::ordered_json; // keeps the report's order

constexpr int indentation = 4;
constexpr const char* rotateTag = "rotate";
constexpr double integerLimit = 9223372036854775808.0; // 2^63

Json parsed(const std::string& report)
{
    constexpr bool mayThrow = false;
    if (report.find('\0') != std::string::npos)
        return Json(Json::value_t::discarded); // the parser would take it for the end of the report
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

std::string matrixTextOf(const Json& stream)
{
    const auto list = stream.find("side_data_list");
    if (list == stream.end() || !list->is_array())
        return {};
    for (const Json& data : *list) {
        if (!data.is_object() || !isText(data, "side_data_type", "Display Matrix"))
            continue;
        const auto numbers = data.find("displaymatrix");
        if (numbers != data.end() && numbers->is_string())
            return numbers->get_ref<const std::string&>();
    }
    return {};
}

void setTrueRotation(Json& stream)
{
    const auto matrix = parseDisplayMatrix(matrixTextOf(stream));
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
    if (duration.is_string()) // the tools leave the locale as it is in C, with a dot
        seconds = std::strtod(duration.get_ref<const std::string&>().c_str(), nullptr);
    return !(seconds < integerLimit && seconds >= -integerLimit);
}

/// Whether there was one. A header that lies can claim more seconds than whole numbers reach.
bool dropEndlessDuration(Json& stream)
{
    const auto duration = stream.find("duration");
    if (duration == stream.end() || !isEndless(*duration))
        return false;
    stream.erase(duration);
    return true;
}

int integerOf(const Json& stream, const char* member)
{
    const auto entry = stream.find(member);
    return entry != stream.end() && entry->is_number_integer() ? entry->get<int>() : 0;
}

VideoFacts factsOf(const Json& stream)
{
    const std::string numbers = matrixTextOf(stream);
    const auto matrix = parseDisplayMatrix(numbers);
    return {matrix ? rotationTag(*matrix) : 0, parseDecodedMatrix(numbers), integerOf(stream, "width"),
        integerOf(stream, "height")};
}

} // namespace

std::string withTrueRotation(const std::string& report)
{
    Json json = parsed(report);
    if (!json.is_object() || !json.contains("streams") || !json["streams"].is_array())
        return report;
    bool isChanged = false;
    for (Json& stream : json["streams"]) {
        if (stream.is_object() && dropEndlessDuration(stream))
            isChanged = true;
        if (!isVideo(stream))
            continue;
        setTrueRotation(stream);
        isChanged = true;
    }
    if (!isChanged)
        return report;
    constexpr bool ensureAscii = false;
    return json.dump(indentation, ' ', ensureAscii, Json::error_handler_t::replace) + '\n';
}

VideoFacts videoFactsOf(const std::string& report)
{
    const Json json = parsed(report);
    if (!json.is_object() || !json.contains("streams") || !json["streams"].is_array())
        return {};
    VideoFacts facts;
    for (const Json& stream : json["streams"]) {
        if (!isVideo(stream))
            continue;
        const bool isPicture = isText(stream, "avg_frame_rate", "0/0"); // as cover pictures are
        if (!isPicture || facts.width == 0)
            facts = factsOf(stream);
        if (!isPicture)
            break;
    }
    return facts;
}
