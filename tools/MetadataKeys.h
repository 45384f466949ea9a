// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

/// The box "meta" with QuickTime keys for those tags of a file that ffmpeg does not write into MP4. Make,
/// model and location get the names that Apple's cameras give them, others keep theirs. Empty for no such
/// tag.
std::string keysBox(const std::vector<std::pair<std::string, std::string>>& tags);
