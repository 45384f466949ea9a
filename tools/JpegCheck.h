// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/// Whether the bytes are a JPEG picture in one scan and nothing else: grey or in three colours, of at most
/// mostStillPixels, and decoded without an error or warning by the library that the application's decoder
/// also uses.
bool isPlainJpeg(std::string_view bytes);

/// The same for all bytes of an open file. False if they cannot be read or are more than 512 MiB.
bool isPlainJpeg(int file);

/// The largest picture that FFmpeg decodes, and so the largest still.
inline constexpr long long mostStillPixels = 1LL << 28;
