// SPDX-License-Identifier: MIT
#include "orientation/PosterFrame.h"

#include "util/Decimal.h"

namespace tarnwell
{

namespace
{

constexpr double middle = 0.5;

} // namespace

std::string posterFramePath(const std::string& temporaryFolder)
{
    return temporaryFolder + "posterFrame.jpg";
}

std::vector<std::string> posterFrameArguments(
    double duration, const std::string& videoPath, const std::string& posterFramePath)
{
    // Seeking before the input jumps there; behind it, everything up to the middle would be decoded.
    return {"-v", "quiet", "-ss", shortestDecimal(duration * middle), "-i", videoPath, "-frames:v", "1", "-y",
        posterFramePath};
}

} // namespace tarnwell
