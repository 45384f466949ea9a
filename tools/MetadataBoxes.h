// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// The source of the metadata for a movie that ffmpeg has written.
struct MetadataSource {
    int file = -1; // open for reading; any container
    std::vector<std::uint32_t> trackIds; // see Attempt; for MP4 and QuickTime files
    std::vector<std::pair<std::string, std::string>> tags; // see MediaFacts; for other containers
    bool isCopy = false; // not encoded: records that describe the coded picture remain valid
};

enum class MetadataResult {
    Added,
    NotAdded, // the movie has not changed, because one of the files has an unexpected structure
    WriteFailed // the movie is damaged
};

/// Completes the metadata of a movie whose last box is its description ("moov"), as ffmpeg writes it. Changes
/// only that box and, in a transcode, a brand, so that no sample moves.
///
/// Copies from an MP4 or QuickTime file: creation and modification dates and languages of the movie and its
/// tracks, user data ("udta"), keys ("meta") and vendors' boxes ("uuid"); "uuid" of a track only for a copy.
/// Copies from other files the tags that ffmpeg does not write into MP4, as QuickTime keys. Removes the brand
/// of Dolby Vision that ffmpeg writes into a transcode.
MetadataResult addMetadata(int movie, const MetadataSource& source);
