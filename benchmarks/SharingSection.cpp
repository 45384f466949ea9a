// SPDX-License-Identifier: MIT
// Measures the time of a fix flag on a file system that shares blocks between files. There it must not depend
// on the size of the file. benchmarks/with-shared-blocks mounts such a file system.
#include "benchmarks/BenchWindow.h"
#include "benchmarks/Sections.h"

#include <cstdlib>
#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

constexpr Budget sharingBudget{1.2, 0};
constexpr int sharingRounds = 15;

double timeOfFlag(BenchWindow& window, const std::string& input, const std::string& output)
{
    window.open(input);
    window.click("rotateRightBTN");
    ::sync();
    const double elapsed = window.save("Fix Flag", output);
    ::unlink(output.c_str());
    return elapsed;
}

} // namespace

void measureSharing(const BenchContext& context)
{
    const std::string what = "fix flag of 0.5 GB, MP4, where blocks are shared: click to result";
    if (const char* reason = std::getenv("SHARED_BLOCKS_MISSING")) {
        context.report.addNotMeasured(what, reason);
        return;
    }
    const std::string folder = context.folder + "/shared";
    BenchWindow window;
    const auto time = [&](const std::string& size) {
        return timeOfFlag(window, folder + "/" + size + ".mp4", folder + "/flagged.mp4");
    };
    time("0.5 GB"); // the first save of a window takes longer
    context.report.compare(what, "the same of 10 MB",
        measureAlternating(
            context.rounds(sharingRounds), [&] { return time("0.5 GB"); }, [&] { return time("10 MB"); }),
        sharingBudget);
}

} // namespace tarnwell::bench
