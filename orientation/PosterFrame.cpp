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
    // "-ss" before "-i" seeks in the input; after "-i" ffmpeg decodes everything up to the position.
    return {"-v", "quiet", "-ss", shortestDecimal(duration * middle), "-i", videoPath, "-frames:v", "1", "-y",
        posterFramePath};
}

} // namespace tarnwell
