// SPDX-License-Identifier: MIT
#include "probe/ProbeArguments.h"

namespace tarnwell
{

std::vector<std::string> probeArguments(const std::string& path)
{
    return {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
        "-show_error", path};
}

} // namespace tarnwell
