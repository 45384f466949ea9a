// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// What a movie made by ffmpeg is to take over from the file it was made from.
struct MetadataSource {
    int file = -1; // open for reading; any container
    std::vector<std::uint32_t> trackIds; // see Attempt; of MP4 and QuickTime files
    std::vector<std::pair<std::string, std::string>> tags; // see MediaFacts; for other containers
    bool isCopy = false; // not encoded: records of the coded picture are still true
};

enum class MetadataResult {
    Added,
    NotAdded, // the movie is as it was, since one of the two files has an unexpected structure
    WriteFailed // the movie is damaged
};

/// Completes the metadata of a movie whose last box is its description ("moov"), as ffmpeg writes it: only
/// that box and, in an encoding, a brand change, so that no sample moves.
///
/// From an MP4 or QuickTime file: creation and modification dates and languages of the movie and its tracks,
/// user data ("udta"), keys ("meta") and boxes of vendors ("uuid") as they are; "uuid" of a track only for a
/// copy. From other files: the tags that ffmpeg does not write into MP4, as QuickTime keys. An encoding loses
/// the brand of Dolby Vision, which ffmpeg gives it.
MetadataResult addMetadata(int movie, const MetadataSource& source);
