// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tarnwell
{

/// Where a still is written: `temporaryFolder` is the text of a folder path that ends in "/".
std::string posterFramePath(const std::string& temporaryFolder);

/// The encoder's argument list for one still from the middle of a video of `duration` seconds. Paths are raw
/// bytes.
std::vector<std::string> posterFrameArguments(
    double duration, const std::string& videoPath, const std::string& posterFramePath);

} // namespace tarnwell
