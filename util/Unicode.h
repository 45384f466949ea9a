// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tarnwell
{

/// Whether the bytes are well-formed UTF-8.
bool isValidUtf8(std::string_view bytes);

/// Whether both texts are the same characters, a composed and a decomposed form of a letter counting as one.
/// Nothing else is folded. Texts that are not valid UTF-8 are compared byte by byte.
bool isCanonicallyEquivalent(std::string_view left, std::string_view right);

} // namespace tarnwell
