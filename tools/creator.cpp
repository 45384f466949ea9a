// SPDX-License-Identifier: MIT
// The encoder tool: makes a still, a copy with another rotation flag, or a new encoding, with ffmpeg. What it
// makes appears whole or not at all, and its input is never written to.
#include "tools/Child.h"
#include "tools/Confinement.h"
#include "tools/Encoder.h"
#include "tools/Job.h"
#include "tools/OutputFile.h"
#include "tools/Placeholder.h"
#include "tools/Report.h"
#include "tools/Rotation.h"
#include "tools/TrackMatrix.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int success = 0;
constexpr int failure = 1;
constexpr int wrongArguments = 2;
constexpr int cancelled = 255; // as ffmpeg has it

VideoFacts factsOf(const std::string& path)
{
    if (canKeepWaiting(path))
        return {};
    ChildPlan ffprobe;
    ffprobe.program = pathOfTool("ffprobe");
    ffprobe.arguments = {"-v", "quiet", "-print_format", "json", "-show_streams", path};
    ffprobe.input = path;
    ffprobe.isBrief = true;
    int status = 0;
    return videoFactsOf(outputOfChild(ffprobe, status, cancellingDescriptor()));
}

std::string containerOf(const Job& job)
{
    return job.kind == Job::Kind::Still ? "image2" : "mp4";
}

RunEnd runJob(const Job& job, const OutputFile& output)
{
    output.empty();
    if (canKeepWaiting(job.input)) {
        std::fprintf(stderr, "tarnwell: %s: not a file\n", job.input.c_str());
        return RunEnd::Failed;
    }
    return runFfmpeg(
        ffmpegArguments(job, {output.writablePath(), containerOf(job)}), job.input, output.descriptor());
}

bool writePlaceholder(const Job& job, const OutputFile& output)
{
    const VideoFacts facts = factsOf(job.input);
    const bool isOnItsSide = facts.decoded && rotationTag(*facts.decoded) % 180 == 90;
    const std::string picture = isOnItsSide ? placeholderPicture(facts.height, facts.width)
                                            : placeholderPicture(facts.width, facts.height);
    output.empty();
    return ::pwrite(output.descriptor(), picture.data(), picture.size(), 0)
        == static_cast<ssize_t>(picture.size());
}

/// An original that stands where the output is to go, under whatever spelling, keeps its bytes under another
/// name. False where that could not be done.
bool saveOriginal(Job& job)
{
    if (!isEntryOf(job.output, job.input))
        return true;
    job.input = putAside(job.output, "original");
    return !job.input.empty();
}

/// Whoever looks at the output's place must not take an older file for the result, nor delete it.
int endWithout(const Job& job, RunEnd end)
{
    const bool isOriginal = isEntryOf(job.output, job.input);
    if (putAside(job.output, isOriginal ? "original" : "previous").empty() && isFileAt(job.output))
        std::fputs("tarnwell: what stood at the output's place could not be put aside\n", stderr);
    return end == RunEnd::Cancelled ? cancelled : failure;
}

/// A wish to cancel counts to the very end: whoever has it takes what stands there then for a part of it.
bool isFinished(OutputFile& output)
{
    if (!output.bringToDisk() || isCancelled() || !output.moveToPlace())
        return false;
    if (!isCancelled())
        return true;
    output.takeBack();
    return false;
}

bool isPicture(RunEnd end, const OutputFile& output)
{
    return end == RunEnd::Succeeded && !output.isEmpty();
}

/// The frame at the asked position, else the first one that decodes, else a grey picture of the same size.
int makeStill(Job job, OutputFile& output)
{
    if (!saveOriginal(job))
        return failure;
    RunEnd end = runJob(job, output);
    if (end != RunEnd::Cancelled && !isPicture(end, output)) {
        job.position.clear();
        end = runJob(job, output);
    }
    const bool isMade = isPicture(end, output) || (end != RunEnd::Cancelled && writePlaceholder(job, output));
    if (isCancelled())
        return cancelled;
    return isMade && isFinished(output) ? success : failure;
}

/// The orientation of the input's main video track. ffprobe is asked only where the file does not say.
Orientation orientationOf(const Job& job)
{
    const int file = ::open(job.input.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    const auto movie = readMovie(file);
    if (file >= 0)
        ::close(file);
    if (movie && !movie->videos.empty())
        return orientationOf(*movie);
    const VideoFacts facts = factsOf(job.input);
    return {facts.rotation, facts.decoded};
}

RunEnd makeVideo(const Job& job, const OutputFile& output)
{
    const RunEnd end = runJob(job, output);
    if (end != RunEnd::Succeeded)
        return end;
    // ffmpeg may have succeeded by its own account although the end could not be written.
    if (!isCompleteMovie(output.descriptor()))
        return RunEnd::Failed;
    if (job.kind == Job::Kind::FixFlag
        && !writeTrackMatrix(output.descriptor(), matrixOfFlag(orientationOf(job), job.rotation)))
        return RunEnd::Failed;
    return isCancelled() ? RunEnd::Cancelled : RunEnd::Succeeded;
}

int makeVideoFile(Job job, OutputFile& output)
{
    if (!saveOriginal(job))
        return failure;
    const RunEnd end = makeVideo(job, output);
    if (end == RunEnd::Succeeded && isFinished(output))
        return success;
    return endWithout(job, isCancelled() ? RunEnd::Cancelled : end);
}

} // namespace

int main(int argc, char* argv[])
{
    holdStandardDescriptors();
    watchForCancelling();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL); // where the caller ignores it, nobody could wait for ffmpeg
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments == std::vector<std::string>{"--confinement"}) {
        std::fputs(describeConfinement().c_str(), stdout);
        return success;
    }
    const auto job = readJob(arguments);
    if (!job) {
        std::fputs("tarnwell: creator does not know what these arguments ask for\n", stderr);
        return wrongArguments;
    }
    OutputFile output(job->output);
    if (!output.isOpen()) {
        std::perror("tarnwell: the output cannot be written");
        return job->kind == Job::Kind::Still ? failure : endWithout(*job, RunEnd::Failed);
    }
    return job->kind == Job::Kind::Still ? makeStill(*job, output) : makeVideoFile(*job, output);
}
