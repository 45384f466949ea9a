// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

/// Creation and modification in seconds since 1904, UTC; 0 for unknown.
struct MovieTimes {
    std::uint64_t created = 0;
    std::uint64_t modified = 0;
};

/// The metadata of one track.
struct TrackMetadata {
    MovieTimes header; // of "tkhd"
    MovieTimes media; // of "mdhd"
    std::optional<std::string> language; // two bytes: three packed letters; empty for an undetermined one
    std::string extendedLanguage; // the box "elng"
    std::string boxes; // "udta", "meta" and "uuid" of the track
    bool hasUserData = false;
};

/// The metadata of a movie, as boxes that do not depend on their place in the file.
struct MovieMetadata {
    MovieTimes header; // of "mvhd"
    std::map<std::uint32_t, TrackMetadata> tracks; // by their numbers in "tkhd"
    std::string userData; // the boxes within "udta", except a list of chapters
    bool hasUserData = false;
    bool hasItems = false; // whether the user data has a "meta" with items
    std::string boxes; // "meta" and "uuid" of the movie
};

/// Reads the metadata of an MP4 or QuickTime file. `isCopy` includes boxes of vendors in tracks, which may
/// describe the coded picture. Leaves out boxes that are too large to be metadata. Other bytes may follow the
/// boxes of the file. Empty for other files and where boxes do not fill the one description.
std::optional<MovieMetadata> readMovieMetadata(int file, bool isCopy);

// Offsets in the content of "mvhd", "tkhd" and "mdhd", whose version is their first byte.
constexpr std::size_t timesOffset = 4; // two times
std::size_t timeSize(char version);
std::size_t languageOffset(char version); // in "mdhd" only
