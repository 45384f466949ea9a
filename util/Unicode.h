// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace tarnwell
{

/// Whether the bytes are well-formed UTF-8.
bool isValidUtf8(std::string_view bytes);

/// Whether both texts are canonically equivalent (Unicode NFD): a composed and a decomposed letter are equal,
/// upper and lower case are not. Compares bytes if either text is invalid UTF-8.
bool isCanonicallyEquivalent(std::string_view left, std::string_view right);

} // namespace tarnwell
