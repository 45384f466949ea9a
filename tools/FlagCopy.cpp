// SPDX-License-Identifier: MIT
#include "tools/FlagCopy.h"

#include "tools/FileCopy.h"
#include "tools/InputFile.h"
#include "tools/OrientationMessage.h"
#include "tools/StandardError.h"
#include "tools/StatusLines.h"
#include "tools/TrackMatrix.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>

namespace
{

using Clock = std::chrono::steady_clock;

/// Writes status lines more often than twice a second. Their times are in proportion to the copied bytes.
class CopyStatus
{
public:
    CopyStatus(std::int64_t microseconds, off_t size)
        : m_microseconds(microseconds)
        , m_size(size)
    {
    }

    void report(off_t copied)
    {
        constexpr std::chrono::milliseconds interval(250);
        if (Clock::now() - m_reportedAt >= interval)
            write(copied);
    }

    void reportEnd() { write(m_size); }

private:
    void write(off_t copied)
    {
        const double share = static_cast<double>(copied) / static_cast<double>(m_size);
        writeErrorLines(statusLine(static_cast<std::int64_t>(share * static_cast<double>(m_microseconds))),
            cancelDescriptor());
        m_reportedAt = Clock::now();
    }

    std::int64_t m_microseconds;
    off_t m_size;
    Clock::time_point m_reportedAt;
};

/// The reason why changing display matrices is not sufficient; empty if it is.
std::string obstacleToCopy(int input, const Movie& movie)
{
    const std::string obstacle = obstacleToPatches(movie);
    if (obstacle.empty() && hasOrientationMessage(input, movie))
        return "its video stream holds an orientation of its own";
    return obstacle;
}

RunEnd failed(const std::string& reason)
{
    writeErrorLines("tarnwell: the file could not be copied: " + reason + "\n", cancelDescriptor());
    return RunEnd::Failed;
}

} // namespace

std::optional<RunEnd> copyWithFlag(const InputFile& input, int output, double rotation)
{
    std::string problem;
    const auto movie = readMovie(input.descriptor(), problem);
    if (movie)
        problem = obstacleToCopy(input.descriptor(), *movie);
    if (isCancelled())
        return RunEnd::Cancelled;
    const auto patches = problem.empty() ? patchesOfFlag(*movie, rotation) : std::nullopt;
    if (!patches) {
        writeErrorLines(
            "tarnwell: the file is not copied byte by byte: " + problem + "\n", cancelDescriptor());
        return std::nullopt;
    }
    CopyStatus status(movie->microseconds, input.size());
    const CopyEnd end = copyFile(input.descriptor(), output, input.size(), [&status](off_t copied) {
        status.report(copied);
        return !isCancelled();
    });
    if (end == CopyEnd::Cancelled)
        return RunEnd::Cancelled;
    const bool isWritten = end == CopyEnd::Copied && applyPatches(output, *patches);
    const std::string reason = std::strerror(errno);
    if (!input.isUnchanged())
        return failed("it was changed meanwhile");
    if (!isWritten)
        return failed(reason);
    status.reportEnd();
    return RunEnd::Succeeded;
}
