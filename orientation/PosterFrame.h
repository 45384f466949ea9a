// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tarnwell
{

/// The path of the still file. `temporaryFolder` must end in "/".
std::string posterFramePath(const std::string& temporaryFolder);

/// The arguments of creator for one still from the middle of a video of `duration` seconds. Paths are raw
/// bytes.
std::vector<std::string> posterFrameArguments(
    double duration, const std::string& videoPath, const std::string& posterFramePath);

} // namespace tarnwell
