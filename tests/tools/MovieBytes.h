// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace tarnwell::test
{

// The boxes of an MP4 file, byte by byte, without a picture in them.

std::string bigEndian(std::uint64_t number, int bytes);

std::string box(const std::string& type, const std::string& content);

/// A box whose size stands in the eight bytes after its type.
std::string longBox(const std::string& type, const std::string& content);

/// A track's header up to its end; `version` 0 or 1.
std::string trackHeader(int version, int width, int height);

/// A track with a header and a handler of that kind, such as "vide".
std::string track(const std::string& handler, int version = 0, int width = 320, int height = 240);

/// A file of three boxes: its type, the data, and the movie with one video and one audio track.
std::string smallMovie();

/// The nine numbers in a track header that begins at `header`.
std::string matrixIn(const std::string& file, std::size_t header);

} // namespace tarnwell::test
