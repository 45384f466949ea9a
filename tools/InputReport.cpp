// SPDX-License-Identifier: MIT
#include "tools/InputReport.h"

#include "tools/Cancel.h"
#include "tools/Child.h"
#include "tools/InputFile.h"
#include "tools/OrientationMessage.h"
#include "tools/StandardError.h"
#include "tools/StatusLines.h"

#include <vector>

namespace
{

using Options = std::vector<std::string>;

/// A JSON report with these options. Sets `hasReadError` if a message of ffprobe names one.
std::string reportOnce(
    const std::string& path, const InputFile& input, const Options& options, bool& hasReadError)
{
    ChildPlan ffprobe;
    ffprobe.program = pathOfTool("ffprobe");
    ffprobe.arguments = {"-v", "error", "-print_format", "json"};
    ffprobe.arguments.insert(ffprobe.arguments.end(), options.begin(), options.end());
    ffprobe.arguments.push_back("file:" + path);
    ffprobe.input = input.descriptor();
    ffprobe.onErrors
        = [&hasReadError](const std::string& lines) { hasReadError = hasReadError || namesReadError(lines); };
    ffprobe.isProbe = true;
    int status = 0;
    return outputOfChild(ffprobe, status, cancelDescriptor());
}

/// ffprobe succeeds after a read error, but its report can lack streams or tags. If the second run has a read
/// error, too, the file is damaged, or ffmpeg will not be able to read it either.
std::string reportOf(const std::string& path, const InputFile& input, const Options& options)
{
    bool hasReadError = false;
    const std::string report = reportOnce(path, input, options, hasReadError);
    if (!hasReadError || isCancelled())
        return report;
    writeErrorLines("tarnwell: ffprobe runs again after a read error\n", cancelDescriptor());
    return reportOnce(path, input, options, hasReadError);
}

/// Whether the matrix of a frame is that of a message in the stream. A matrix that equals the one of the
/// container can be a copy of it. In H.264 it counts as a message nevertheless, because there a message can
/// be removed alone.
bool isMessage(const FrameOrientation& frame, const MediaFacts& facts)
{
    if (!frame.matrix)
        return false;
    const bool isCopy = frame.mayBeOfContainer && facts.video.decoded
        && areNearlyEqual(*frame.matrix, *facts.video.decoded);
    return !isCopy || facts.mainVideo->codec == "h264";
}

} // namespace

MediaFacts readMediaFacts(const std::string& path, const InputFile& input)
{
    MediaFacts facts = mediaFactsOf(reportOf(path, input, {"-show_format", "-show_streams"}));
    if (facts.streams.empty() && !isCancelled())
        writeErrorLines("tarnwell: ffprobe reports no streams of the input\n", cancelDescriptor());
    return facts;
}

void readOrientationMessage(MediaFacts& facts, const std::string& path, const InputFile& input)
{
    if (!facts.mainVideo || (facts.mainVideo->codec != "h264" && facts.mainVideo->codec != "hevc"))
        return;
    const auto movie = readMovie(input.descriptor());
    if (movie && !hasOrientationMessage(input.descriptor(), *movie))
        return;
    // Messages are in front of key frames. The packets before the first one decode to no frame.
    const auto frame = frameOrientationOf(reportOf(path, input,
        {"-select_streams", std::to_string(facts.mainVideo->index), "-skip_frame", "nokey", "-show_frames",
            "-show_library_versions", "-read_intervals", "%+#100"}));
    facts.hasOrientationMessage = movie || isMessage(frame, facts);
    if (frame.matrix && frame.isObeyed)
        facts.video.decoded = frame.matrix;
}
