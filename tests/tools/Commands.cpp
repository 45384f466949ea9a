// SPDX-License-Identifier: MIT
#include "tests/tools/Commands.h"

namespace tarnwell::test
{

Words probeCommand(const std::string& path)
{
    return {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
        "-show_error", path};
}

Words stillCommand(const std::string& position, const std::string& input, const std::string& output)
{
    return {"-v", "quiet", "-ss", position, "-i", input, "-frames:v", "1", "-y", output};
}

Words fixFlagCommand(const std::string& input, const std::string& output, const std::string& tag)
{
    return {"-i", input, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", tag, "-y", output};
}

Words transcodeCommand(const std::string& input, const std::string& output, const std::string& filters)
{
    return joined(
        joined({"-i", input, "-pix_fmt", "yuv420p"}, filters.empty() ? Words() : Words{"-vf", filters}),
        {"-metadata:s:v", "rotate=0", "-y", output});
}

Words joined(Words first, const Words& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace tarnwell::test
