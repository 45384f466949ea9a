// SPDX-License-Identifier: MIT
// The encoder tool: makes a still, a copy with another rotation flag, or a transcode. Copies a file of the
// MP4 family byte by byte for a flag; runs ffmpeg for everything else. The output appears complete or not at
// all, and the input is never opened for writing.
#include "tools/Child.h"
#include "tools/Confinement.h"
#include "tools/Conversion.h"
#include "tools/Encoder.h"
#include "tools/FlagCopy.h"
#include "tools/InputFile.h"
#include "tools/InputReport.h"
#include "tools/Job.h"
#include "tools/JpegCheck.h"
#include "tools/OutputFile.h"
#include "tools/Permissions.h"
#include "tools/Placeholder.h"
#include "tools/Report.h"
#include "tools/Rotation.h"
#include "tools/StandardError.h"
#include "tools/TrackMatrix.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int success = 0;
constexpr int failure = 1;
constexpr int wrongArguments = 2;
constexpr int cancelled = 255; // ffmpeg's exit status after a cancel

RunEnd runStill(const Job& job, const InputFile& input, const OutputFile& output)
{
    output.empty();
    return runFfmpeg(ffmpegArguments(job, {output.writablePath(), "image2"}), input, output.descriptor());
}

bool writePlaceholder(const VideoFacts& video, const OutputFile& output)
{
    const std::string picture = placeholderOf(video);
    output.empty();
    return ::pwrite(output.descriptor(), picture.data(), picture.size(), 0)
        == static_cast<ssize_t>(picture.size());
}

/// Writes the text and the reason in errno to standard error.
bool reportFailure(const char* text)
{
    std::perror(text);
    return false;
}

/// Renames the file at the output's path if it is the input, and continues with its new path. False if the
/// rename failed.
bool saveOriginal(Job& job, InputFile& input, const OutputFile& output)
{
    if (!input.isOpen() || !output.place().holds(input.descriptor()))
        return true;
    const std::string name = output.place().putAside("original");
    if (name.empty())
        return reportFailure("tarnwell: the original at the output's path could not be renamed");
    job.input = output.place().pathOf(name);
    input.reopen(job.input);
    return true;
}

/// Ends a job without a result. An older file at the output's path stays there if it is unchanged, because
/// the application neither deletes it then nor takes it for the result. Another file is renamed: one that
/// another program has written meanwhile, or an older one whose attributes changed when it was renamed and
/// back. Returns the exit status.
int endWithoutOutput(const OutputPlace& place, RunEnd end)
{
    if (!place.isUnchanged() && place.putAside("previous").empty() && place.hasFile())
        std::fputs("tarnwell: the file at the output's path could not be renamed\n", stderr);
    return end == RunEnd::Cancelled ? cancelled : failure;
}

/// Moves the finished file to its path. False on an error, and after a cancel that was in time.
bool moveToPath(OutputFile& output)
{
    if (!output.putOlderAside())
        return reportFailure("tarnwell: the output could not be moved to its path");
    if (isCancelled() || (output.replacesOlder() && !commit()))
        return false;
    if (!output.moveToPath())
        return reportFailure("tarnwell: the output could not be moved to its path");
    if (output.replacesOlder())
        return true;
    return output.hasOlder() ? commit() : !isCancelled();
}

/// Writes the finished file to the disk and moves it to its path. If this fails or is cancelled in time, an
/// older file is at the path again.
bool finish(OutputFile& output)
{
    const auto mayContinue = [] {
        repeatStatusLine(cancelDescriptor());
        return !isCancelled();
    };
    if (!output.sync(mayContinue))
        return reportFailure("tarnwell: the output could not be written to the disk");
    if (isCancelled())
        return false;
    if (!moveToPath(output)) {
        if (!output.undoMove())
            std::perror("tarnwell: the older file could not be renamed back");
        return false;
    }
    if (output.hasOlder() && !output.deleteOlder())
        std::perror("tarnwell: the older file could not be deleted");
    return true;
}

/// The application decodes the still outside the confinement of ffmpeg: a compromised ffmpeg must not be able
/// to choose another format or a JPEG picture that stops the application.
bool isPicture(RunEnd end, const OutputFile& output)
{
    // A still needs only one frame, so that it can come from a file that is still being written.
    return (end == RunEnd::Succeeded || end == RunEnd::InputFailed) && isPlainJpeg(output.descriptor());
}

/// The index of the main video stream; empty if this is the first one that is no cover, which a still shows
/// without an index.
std::optional<int> otherMainStream(const MediaFacts& facts)
{
    const auto first
        = std::find_if(facts.streams.begin(), facts.streams.end(), [](const MediaStream& stream) {
              return stream.kind == MediaStream::Kind::Video && !stream.isAttachedPicture;
          });
    if (!facts.mainVideo || first == facts.streams.end() || first->index == facts.mainVideo->index)
        return std::nullopt;
    return facts.mainVideo->index;
}

/// The frame at the given position, else the first frame that decodes, else a cover. False if there is none.
/// The first video stream has no frame at the position if it is a single picture: then the report decides
/// which stream is shown, as for saves. Sets `facts` in this case only, because a report takes time.
bool decodeStill(Job job, const InputFile& input, const OutputFile& output, MediaFacts& facts)
{
    if (isPicture(runStill(job, input, output), output))
        return true;
    facts = readMediaFacts(job.input, input);
    job.stream = otherMainStream(facts);
    if (job.stream && isPicture(runStill(job, input, output), output))
        return true;
    job.position.clear();
    if (isPicture(runStill(job, input, output), output))
        return true;
    job.stream.reset();
    job.mayBeCover = true;
    return isPicture(runStill(job, input, output), output);
}

/// A frame of the video, else the placeholder in the size in which players show the video.
int makeStill(Job job, InputFile& input, OutputFile& output)
{
    if (!saveOriginal(job, input, output))
        return failure;
    MediaFacts facts;
    bool isMade = input.isOpen() && decodeStill(job, input, output, facts);
    if (!isMade && !isCancelled())
        isMade = writePlaceholder(facts.video, output);
    if (isCancelled())
        return cancelled;
    return isMade && finish(output) ? success : failure;
}

RunEnd makeVideo(const Job& job, const InputFile& input, const OutputFile& output)
{
    output.empty();
    if (job.kind == Job::Kind::FixFlag) {
        if (const auto end = copyWithFlag(input, output.descriptor(), job.rotation))
            return *end;
    }
    MediaFacts facts = readMediaFacts(job.input, input);
    if (job.kind == Job::Kind::FixFlag)
        readOrientationMessage(facts, job.input, input);
    const RunEnd end = convert(job, facts, input, output);
    if (end != RunEnd::Succeeded)
        return end;
    const Orientation orientation = {facts.video.rotation, facts.video.decoded};
    if (job.kind == Job::Kind::FixFlag
        && !writeTrackMatrix(output.descriptor(), matrixOfFlag(orientation, job.rotation)))
        return RunEnd::Failed;
    return isCancelled() ? RunEnd::Cancelled : RunEnd::Succeeded;
}

int makeVideoFile(Job job, InputFile& input, OutputFile& output)
{
    if (!saveOriginal(job, input, output))
        return failure;
    const RunEnd end = input.isOpen() ? makeVideo(job, input, output) : RunEnd::Failed;
    if (end == RunEnd::Succeeded && finish(output))
        return success;
    return endWithoutOutput(output.place(), isCancelled() ? RunEnd::Cancelled : end);
}

} // namespace

int main(int argc, char* argv[])
{
    openStandardDescriptors();
    handleCancelSignals();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // exceeding the file size limit becomes a failed write
    std::signal(SIGCHLD, SIG_DFL); // waitpid fails if the caller ignores SIGCHLD
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments == std::vector<std::string>{"--confinement"}) {
        std::fputs(describeConfinement().c_str(), stdout);
        return success;
    }
    const auto job = readJob(arguments);
    if (!job) {
        std::fputs("tarnwell: creator does not know these arguments\n", stderr);
        return wrongArguments;
    }
    InputFile input(job->input);
    // Users who cannot read the input cannot read a new file.
    OutputFile output(job->output, permissionsOf(input.descriptor()));
    if (!output.isOpen()) {
        std::perror("tarnwell: the output cannot be written");
        return job->kind == Job::Kind::Still ? failure : endWithoutOutput(output.place(), RunEnd::Failed);
    }
    if (!input.isOpen())
        std::fprintf(stderr, "tarnwell: the input cannot be read: %s\n", input.error().c_str());
    return job->kind == Job::Kind::Still ? makeStill(*job, input, output)
                                         : makeVideoFile(*job, input, output);
}
