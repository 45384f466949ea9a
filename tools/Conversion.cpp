// SPDX-License-Identifier: MIT
#include "tools/Conversion.h"

#include "tools/Attempts.h"
#include "tools/InputFile.h"
#include "tools/MetadataBoxes.h"
#include "tools/OutputFile.h"
#include "tools/StandardError.h"
#include "tools/TrackMatrix.h"

#include <sys/statvfs.h>

namespace
{

/// Whether the output's file system is full: no other attempt can succeed then.
bool isDiskFull(int file)
{
    constexpr unsigned long long least = 1 << 20;
    struct statvfs status = {};
    return ::fstatvfs(file, &status) == 0
        && static_cast<unsigned long long>(status.f_bavail) * status.f_frsize < least;
}

/// ffmpeg can exit with 0 although it could not write the end of its output.
RunEnd runAttempt(const Attempt& attempt, const InputFile& input, const OutputFile& output)
{
    output.empty();
    const RunEnd end = runFfmpeg(attempt.arguments, input, output.descriptor());
    return end == RunEnd::Succeeded && !isCompleteMovie(output.descriptor()) ? RunEnd::Failed : end;
}

RunEnd completeMetadata(const Attempt& attempt, const Job& job, const MediaFacts& facts,
    const InputFile& input, const OutputFile& output)
{
    const auto result = addMetadata(output.descriptor(),
        {input.descriptor(), attempt.trackIds, facts.tags, job.kind == Job::Kind::FixFlag});
    if (result == MetadataResult::NotAdded)
        writeErrorLines("tarnwell: some metadata could not be added\n", cancelDescriptor());
    return result == MetadataResult::WriteFailed ? RunEnd::Failed : RunEnd::Succeeded;
}

} // namespace

RunEnd convert(const Job& job, const MediaFacts& facts, const InputFile& input, const OutputFile& output)
{
    for (const Attempt& attempt : attemptsFor(job, facts, {output.writablePath(), "mp4"})) {
        const RunEnd end = runAttempt(attempt, input, output);
        if (end == RunEnd::Succeeded) {
            if (!attempt.notice.empty())
                writeErrorLines(attempt.notice, cancelDescriptor());
            return completeMetadata(attempt, job, facts, input, output);
        }
        if (end == RunEnd::Cancelled || end == RunEnd::InputFailed || isDiskFull(output.descriptor()))
            return end;
    }
    return RunEnd::Failed;
}
