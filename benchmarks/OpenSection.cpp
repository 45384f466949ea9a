// SPDX-License-Identifier: MIT
// Measures the time from the choice of a file to the enabled controls. The reference is the same one run of
// ffprobe and two runs of ffmpeg, started directly.
#include "benchmarks/BareTools.h"
#include "benchmarks/BenchWindow.h"
#include "benchmarks/Sections.h"
#include "probe/FileProbe.h"

#include <map>
#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

const std::map<std::string, Budget> budgets = {{"1080p", {1.12, 0}}, {"4K", {1.12, 0}}};
constexpr int rounds = 15;

double runBareTools(const std::string& path, double duration, const std::string& stillPath)
{
    double sum = millisecondsToRun(bareReport(path));
    for (int still = 0; still < 2; ++still) {
        sum += millisecondsToRun(bareStill(path, duration, stillPath));
        ::unlink(stillPath.c_str());
    }
    return sum;
}

Pairs measureClip(BenchWindow& window, const std::string& path, int count)
{
    const double duration = FileProbe(path, test::realTools()).duration;
    const std::string stillPath = window.ownFolder() + "bare.jpg";
    window.open(path); // puts the file into the page cache
    return measureAlternating(
        count, [&] { return window.open(path); }, [&] { return runBareTools(path, duration, stillPath); });
}

void measureSizes(const BenchContext& context, BenchWindow& window)
{
    context.report.beginTable("Opening, by picture size", {"clip", "open", "three bare runs", "ratio"});
    for (const std::string size : pictureSizes) {
        const Pairs pairs = measureClip(window, context.clip(size), context.rounds(rounds));
        auto cells = timeCells(pairs);
        cells.insert(cells.begin(), size);
        context.report.addRow(cells);
        if (const auto budget = budgets.find(size); budget != budgets.end())
            context.report.compare("open a " + size + " clip: choice to enabled controls",
                "ffprobe, ffmpeg, ffmpeg", pairs, budget->second);
    }
}

void measureClips(const BenchContext& context, BenchWindow& window, const std::string& title,
    const std::vector<std::string>& names)
{
    context.report.beginTable(title, {"clip", "open", "three bare runs", "ratio"});
    for (const auto& name : names) {
        auto cells = timeCells(measureClip(window, context.clip(name), context.rounds(rounds)));
        cells.insert(cells.begin(), name);
        context.report.addRow(cells);
    }
}

} // namespace

void measureOpening(const BenchContext& context)
{
    BenchWindow window;
    measureSizes(context, window);
    std::vector<std::string> lengths = {"10 s", "1 min", "10 min", "1 h"};
    if (context.isQuick)
        lengths.pop_back();
    measureClips(context, window, "Opening, by length (320 x 180)", lengths);
    measureClips(context, window, "Opening, by number of tracks",
        {"1 track", "5 tracks", "10 tracks", "20 tracks", "40 tracks"});
}

} // namespace tarnwell::bench
