// SPDX-License-Identifier: MIT
#include "tools/MetadataKeys.h"

#include "tools/Boxes.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace
{

// Tags that ffmpeg writes into MP4 itself, and tags that describe the old file only.
constexpr std::array<std::string_view, 27> otherTags = {"title", "artist", "album_artist", "composer",
    "album", "date", "encoder", "comment", "genre", "copyright", "grouping", "lyrics", "description",
    "synopsis", "show", "episode_id", "network", "keywords", "track", "disc", "creation_time", "duration",
    "major_brand", "minor_version", "compatible_brands", "bps", "filesize"};

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> appleNames
    = {{{"make", "com.apple.quicktime.make"}, {"model", "com.apple.quicktime.model"},
        {"location", "com.apple.quicktime.location.ISO6709"}}};

constexpr std::size_t longestValue = 65536; // bytes; a longer value is binary data

std::string lowerCase(std::string text)
{
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
}

std::string keyOf(const std::string& tag)
{
    const std::string name = lowerCase(tag);
    for (const auto& [known, key] : appleNames) {
        if (name == known)
            return std::string(key);
    }
    return tag;
}

bool isKept(const std::pair<std::string, std::string>& tag)
{
    const bool isOther
        = std::find(otherTags.begin(), otherTags.end(), lowerCase(tag.first)) != otherTags.end();
    return !isOther && !tag.second.empty() && tag.second.size() <= longestValue;
}

std::string handlerBox()
{
    return boxBytes("hdlr", std::string(8, '\0') + "mdta" + std::string(13, '\0'));
}

/// A value in UTF-8 for the key with that number, counted from 1.
std::string valueBox(std::uint64_t number, const std::string& value)
{
    constexpr std::uint64_t utf8 = 1;
    constexpr std::uint64_t anyLocale = 0;
    const std::string data = boxBytes("data", bigEndianBytes(utf8, 4) + bigEndianBytes(anyLocale, 4) + value);
    return boxBytes(bigEndianBytes(number, 4), data);
}

} // namespace

std::string keysBox(const std::vector<std::pair<std::string, std::string>>& tags)
{
    std::string keys;
    std::string values;
    std::uint64_t count = 0;
    for (const auto& tag : tags) {
        if (!isKept(tag))
            continue;
        keys += boxBytes("mdta", keyOf(tag.first));
        values += valueBox(++count, tag.second);
    }
    if (count == 0)
        return {};
    const std::string versionAndFlags(4, '\0');
    const std::string list = boxBytes("keys", versionAndFlags + bigEndianBytes(count, 4) + keys);
    // No version and flags: cameras omit them in MP4, too.
    return boxBytes("meta", handlerBox() + list + boxBytes("ilst", values));
}
