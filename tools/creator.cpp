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
    return runFfmpeg(
        ffmpegArguments(job, {output.writablePath(), containerOf(job)}), job.input, output.descriptor());
}

bool writePlaceholder(const Job& job, const OutputFile& output)
{
    const VideoFacts facts = factsOf(job.input);
    const bool isOnItsSide = facts.matrix && rotationTag(*facts.matrix) % 180 == 90;
    const std::string picture = isOnItsSide ? placeholderPicture(facts.height, facts.width)
                                            : placeholderPicture(facts.width, facts.height);
    output.empty();
    return ::pwrite(output.descriptor(), picture.data(), picture.size(), 0)
        == static_cast<ssize_t>(picture.size());
}

/// An original whose own directory entry is to become the output keeps its bytes under another name. False
/// where that could not be done.
bool saveOriginal(Job& job)
{
    if (!isSameEntry(job.input, job.output))
        return true;
    job.input = putAside(job.input, "original");
    return !job.input.empty();
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
    return isMade && output.finish() ? success : failure;
}

/// The turn that the flag says is against the coded picture. A mirror that the input's matrix carries is
/// kept: the turn is then reckoned from what decoders show of it.
DisplayMatrix matrixOfFlag(const Job& job)
{
    const auto matrix = factsOf(job.input).matrix;
    if (!matrix || !isMirrored(*matrix))
        return turnedLeft(job.rotation);
    return combined(*matrix, turnedLeft(job.rotation + rotationTag(*matrix)));
}

RunEnd makeVideo(const Job& job, const OutputFile& output)
{
    const RunEnd end = runJob(job, output);
    if (end != RunEnd::Succeeded)
        return end;
    // ffmpeg may have succeeded by its own account although the end could not be written.
    if (!isCompleteMovie(output.descriptor()))
        return RunEnd::Failed;
    if (job.kind == Job::Kind::FixFlag && !writeTrackMatrix(output.descriptor(), matrixOfFlag(job)))
        return RunEnd::Failed;
    return isCancelled() ? RunEnd::Cancelled : RunEnd::Succeeded;
}

int makeVideoFile(Job job, OutputFile& output)
{
    if (!saveOriginal(job))
        return failure;
    const RunEnd end = makeVideo(job, output);
    if (end == RunEnd::Succeeded && output.finish())
        return success;
    // Whoever looks at the output's place must not take an older file for the result, nor delete it.
    putAside(job.output, "previous");
    return end == RunEnd::Cancelled ? cancelled : failure;
}

} // namespace

int main(int argc, char* argv[])
{
    holdStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    watchForCancelling();
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
        return failure;
    }
    return job->kind == Job::Kind::Still ? makeStill(*job, output) : makeVideoFile(*job, output);
}
