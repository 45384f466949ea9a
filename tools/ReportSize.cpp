// SPDX-License-Identifier: MIT
#include "tools/ReportSize.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace
{

// Sorts members: one that keeps their order takes a time that grows with the square of their number.
using SortedJson = nlohmann::json;

constexpr std::size_t mostUnchanged = std::size_t(1) << 20U;
constexpr std::size_t longestText = std::size_t(64) << 10U;
constexpr std::size_t mostTags = 1000;

std::string textOf(const SortedJson& report)
{
    constexpr int indentation = 4;
    constexpr bool ensureAscii = false;
    return report.dump(indentation, ' ', ensureAscii, SortedJson::error_handler_t::replace) + '\n';
}

/// Cuts between two characters of UTF-8.
void cutText(std::string& text)
{
    if (text.size() <= longestText)
        return;
    std::size_t end = longestText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    text.resize(end);
}

void cutTexts(SortedJson& value)
{
    if (value.is_string())
        cutText(value.get_ref<std::string&>());
    else if (value.is_structured())
        std::for_each(value.begin(), value.end(), cutTexts);
}

void keepSomeTags(SortedJson& owner)
{
    if (!owner.is_object() || !owner.contains("tags") || owner["tags"].size() <= mostTags)
        return;
    SortedJson kept = SortedJson::object();
    for (const char* name : {"rotate", "language"}) {
        if (owner["tags"].contains(name))
            kept[name] = owner["tags"][name];
    }
    for (const auto& [name, value] : owner["tags"].items()) {
        if (kept.size() >= mostTags)
            break;
        kept[name] = value;
    }
    owner["tags"] = std::move(kept);
}

} // namespace

std::string limitedReport(const std::string& report)
{
    constexpr bool mayThrow = false;
    if (report.size() <= mostUnchanged || report.find('\0') != std::string::npos)
        return report;
    SortedJson json = SortedJson::parse(report, nullptr, mayThrow);
    if (!json.is_object())
        return report;
    keepSomeTags(json["format"]);
    for (const char* list : {"streams", "chapters"})
        std::for_each(json[list].begin(), json[list].end(), keepSomeTags);
    std::string text = textOf(json);
    if (text.size() <= mostReport)
        return text;
    json["chapters"] = SortedJson::array();
    cutTexts(json);
    text = textOf(json);
    if (text.size() <= mostReport)
        return text;
    constexpr int invalidData = -1094995529; // as ffprobe reports it
    return textOf({{"error", {{"code", invalidData}, {"string", "The report is too large"}}}});
}
