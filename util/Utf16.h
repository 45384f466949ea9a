// SPDX-License-Identifier: MIT
#pragma once

#include <unicode/unistr.h>

#include <cstdint>
#include <string_view>

namespace tarnwell
{

/// Converts UTF-8 to ICU's UTF-16 text. Invalid bytes become U+FFFD.
inline icu::UnicodeString utf16FromUtf8(std::string_view text)
{
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

} // namespace tarnwell
