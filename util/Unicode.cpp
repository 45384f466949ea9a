// SPDX-License-Identifier: MIT
#include "util/Unicode.h"

#include "platform/FatalError.h"
#include "util/Utf16.h"

#include <unicode/normalizer2.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace tarnwell
{

namespace
{

icu::UnicodeString decomposed(std::string_view text)
{
    UErrorCode error = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFDInstance(error);
    auto result = required(normalizer).normalize(utf16FromUtf8(text), error);
    if (U_FAILURE(error))
        fatalError();
    return result;
}

} // namespace

bool isValidUtf8(std::string_view bytes)
{
    const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    for (std::size_t position = 0; position < bytes.size();) {
        UChar32 character = 0;
        U8_NEXT(data, position, bytes.size(), character);
        if (character < 0)
            return false;
    }
    return true;
}

bool isCanonicallyEquivalent(std::string_view left, std::string_view right)
{
    if (left == right)
        return true;
    if (!isValidUtf8(left) || !isValidUtf8(right))
        return false;
    return decomposed(left) == decomposed(right);
}

} // namespace tarnwell
