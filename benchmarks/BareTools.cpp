// SPDX-License-Identifier: MIT
#include "benchmarks/BareTools.h"

#include "benchmarks/Report.h"
#include "export/ExportPlan.h"
#include "orientation/PosterFrame.h"
#include "probe/FileProbe.h"
#include "tools/Job.h"

namespace tarnwell::bench
{

namespace
{

const std::string folderOfTools = "/usr/bin/";

Command ffmpegFor(const std::vector<std::string>& arguments, const std::string& container)
{
    const auto job = readJob(arguments);
    if (!job)
        exitWithError("creator rejects the argument list of the application");
    return {folderOfTools + "ffmpeg", ffmpegArguments(*job, {job->output, container})};
}

} // namespace

Command bareReport(const std::string& path)
{
    return {folderOfTools + "ffprobe", probeArguments(path)};
}

Command bareStill(const std::string& path, double duration, const std::string& stillPath)
{
    return ffmpegFor(posterFrameArguments(duration, path, stillPath), "image2");
}

Command bareFixFlag(const std::string& path, const std::string& outputPath)
{
    return ffmpegFor(fixFlagArgumentList(path, outputPath, fixFlagRotation(quarterTurnRight, 0)), "mp4");
}

Command bareTranscode(const std::string& path, const std::string& outputPath)
{
    return ffmpegFor(transcodeArgumentList(path, outputPath, quarterTurnRight), "mp4");
}

} // namespace tarnwell::bench
