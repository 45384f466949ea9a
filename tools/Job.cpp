// SPDX-License-Identifier: MIT
#include "tools/Job.h"

#include "tools/Arguments.h"
#include "tools/WholeNumber.h"

namespace
{

// The H.264 encoder refuses odd sizes in yuv420p: the last column or line is cropped.
const std::string evenSize = "crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0";

// Makes pixels square by stretching the picture, or by shrinking the other side if a side would exceed this
// limit. "sar" is the width of a pixel divided by its height. Square and unknown pixels do not change.
const std::string longestStretchedSide = "8192";
const std::string squarePixels = "scale=w='round(if(gt(sar,1)*lte(iw*sar," + longestStretchedSide
    + "),iw*sar,if(lt(sar,1)*gt(ih/sar," + longestStretchedSide
    + "),max(iw*sar,1),iw)))':h='round(if(lt(sar,1)*lte(ih/sar," + longestStretchedSide
    + "),ih/sar,if(gt(sar,1)*gt(iw*sar," + longestStretchedSide + "),max(ih/sar,1),ih)))',setsar=1";

const std::string rotatePrefix = "rotate=";

/// Whether the list equals the pattern. "*" matches any one argument.
bool matches(const Arguments& arguments, const Arguments& pattern)
{
    if (arguments.size() != pattern.size())
        return false;
    for (std::size_t place = 0; place < pattern.size(); ++place) {
        if (pattern[place] != "*" && pattern[place] != arguments[place])
            return false;
    }
    return true;
}

std::optional<Job> readStill(const Arguments& list)
{
    if (!matches(list, {"-v", "quiet", "-ss", "*", "-i", "*", "-frames:v", "1", "-y", "*"}))
        return std::nullopt;
    Job job;
    job.kind = Job::Kind::Still;
    job.position = list[3];
    job.input = list[5];
    job.output = list[9];
    return job;
}

std::optional<Job> readFixFlag(const Arguments& list)
{
    if (!matches(list, {"-i", "*", "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "*", "-y", "*"})
        || list[7].rfind(rotatePrefix, 0) != 0)
        return std::nullopt;
    Job job;
    const auto degrees = wholeNumber(list[7].substr(rotatePrefix.size()));
    if (!degrees)
        return std::nullopt;
    job.kind = Job::Kind::FixFlag;
    job.input = list[1];
    job.rotation = static_cast<double>(*degrees);
    job.output = list[9];
    return job;
}

std::optional<Job> readTranscode(const Arguments& list)
{
    const bool isFiltered = matches(
        list, {"-i", "*", "-pix_fmt", "yuv420p", "-vf", "*", "-metadata:s:v", "rotate=0", "-y", "*"});
    if (!isFiltered
        && !matches(list, {"-i", "*", "-pix_fmt", "yuv420p", "-metadata:s:v", "rotate=0", "-y", "*"}))
        return std::nullopt;
    Job job;
    job.kind = Job::Kind::Transcode;
    job.input = list[1];
    job.filters = isFiltered ? list[5] : "";
    job.output = list.back();
    return job;
}

// Without the protocol ffmpeg would treat a path such as "http://x" as an address.
std::string asFile(const std::string& path)
{
    return "file:" + path;
}

void appendTarget(Arguments& list, const Target& target)
{
    if (!target.container.empty())
        append(list, {"-f", target.container});
    append(list, {"-y", target.path});
}

} // namespace

std::optional<Job> readJob(const std::vector<std::string>& arguments)
{
    if (auto job = readStill(arguments))
        return job;
    if (auto job = readFixFlag(arguments))
        return job;
    return readTranscode(arguments);
}

std::vector<std::string> ffmpegArguments(const Job& job, const Target& target)
{
    if (job.kind == Job::Kind::FixFlag)
        return ffmpegArguments(job, target, {"-c:v", "copy", "-c:a", "copy"});
    if (job.kind == Job::Kind::Transcode)
        return ffmpegArguments(job, target, {});
    Arguments list = {"-nostdin", "-hide_banner", "-v", "quiet"};
    if (!job.position.empty())
        append(list, {"-ss", job.position});
    append(list, {"-i", asFile(job.input)});
    if (!job.mayBeCover) // V: video streams that are not covers
        append(list, {"-map", job.stream ? "0:" + std::to_string(*job.stream) : "0:V:0"});
    append(list, {"-frames:v", "1", "-update", "1", "-vf", squarePixels});
    appendTarget(list, target);
    return list;
}

std::vector<std::string> ffmpegArguments(
    const Job& job, const Target& target, const std::vector<std::string>& streamOptions)
{
    Arguments list = {"-nostdin", "-hide_banner", "-v", "error", "-nostats", "-progress", "pipe:1", "-i",
        asFile(job.input)};
    append(list, streamOptions);
    if (job.kind == Job::Kind::Transcode)
        append(list,
            {"-pix_fmt", "yuv420p", "-vf", job.filters.empty() ? evenSize : job.filters + "," + evenSize,
                "-metadata:s:v", "rotate=0"});
    appendTarget(list, target);
    return list;
}
