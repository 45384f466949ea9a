// SPDX-License-Identifier: MIT
#include "tools/Conversion.h"

#include "tools/Attempts.h"
#include "tools/InputFile.h"
#include "tools/MetadataBoxes.h"
#include "tools/OutputFile.h"
#include "tools/StandardError.h"
#include "tools/TrackMatrix.h"

#include <array>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

/// Whether the output's file system is full. Network file systems can accept writes that fail later.
bool isDiskFull(int file)
{
    constexpr unsigned long long least = 1 << 20;
    struct statvfs status = {};
    return ::fstatvfs(file, &status) == 0
        && static_cast<unsigned long long>(status.f_bavail) * status.f_frsize < least;
}

/// Whether the output of a failed attempt can grow: the disk is not full, and neither a quota nor the largest
/// file size of the file system is reached. Otherwise the next attempt could succeed because it keeps less.
/// Appends bytes, which the next attempt removes.
bool canGrow(const OutputFile& output)
{
    constexpr std::array<char, 4096> bytes = {};
    struct stat status = {};
    return ::fstat(output.descriptor(), &status) == 0 && !isDiskFull(output.descriptor())
        && ::pwrite(output.descriptor(), bytes.data(), bytes.size(), status.st_size)
        == static_cast<ssize_t>(bytes.size());
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
        if (end == RunEnd::Cancelled || end == RunEnd::InputFailed || !canGrow(output))
            return end;
    }
    return RunEnd::Failed;
}
