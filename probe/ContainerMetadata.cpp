// SPDX-License-Identifier: MIT
#include "probe/ContainerMetadata.h"

#include <string_view>

namespace tarnwell
{

namespace
{

constexpr std::int64_t movieKind = 9; // of the iTunes tag "stik", which ffprobe calls media_type

std::string plainText(const JSON& tag)
{
    return tag.text();
}

std::string yesOrNo(const JSON& tag)
{
    return tag.integer() == 1 ? "Yes" : "No";
}

std::string mediaKind(const JSON& tag)
{
    return tag.integer() == movieKind ? "Movie" : "";
}

struct Entry {
    std::string_view label;
    std::string_view tag;
    std::string (*value)(const JSON&);
};

constexpr Entry entries[] = {
    {"Title", "title", plainText},
    {"Tagline", "description", plainText},
    {"Synopsis", "synopsis", plainText},
    {"Release Date", "date", plainText},
    {"Genre", "genre", plainText},
    {"HD", "hd_video", yesOrNo},
    {"Media Kind", "media_type", mediaKind},
    {"Composer", "composer", plainText},
    {"Rating", "iTunEXTC", plainText},
    {"Encoder", "encoder", plainText},
    {"Copyright", "copyright", plainText},
    {"Comment", "comment", plainText},
};

} // namespace

std::vector<std::map<std::string, std::string>> containerMetadata(const JSON& tags)
{
    std::vector<std::map<std::string, std::string>> metadata;
    for (const auto& entry : entries)
        metadata.push_back({{"key", std::string(entry.label)}, {"value", entry.value(tags[entry.tag])}});
    return metadata;
}

} // namespace tarnwell
