// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/// Whether the bytes are one whole baseline JPEG picture that every decoder accepts: from its start to its
/// end marker, with nothing behind, all tables that its single scan refers to, and at most mostStillPixels.
/// The entropy-coded data itself is not decoded: decoders show something for any data.
bool isPlainJpeg(std::string_view bytes);

/// The same for all bytes of an open file. False where they cannot be read or are more than 512 MiB.
bool isPlainJpeg(int file);

/// The largest picture that FFmpeg decodes, and so the largest still.
inline constexpr long long mostStillPixels = 1LL << 28;
