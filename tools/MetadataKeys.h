// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

/// The box "meta" with QuickTime keys for the tags that ffmpeg does not write into MP4. Make, model and
/// location get the names that Apple's cameras use; other tags keep their names. Empty if there is no such
/// tag.
std::string keysBox(const std::vector<std::pair<std::string, std::string>>& tags);
