// SPDX-License-Identifier: MIT
// From the choice of a file to the enabled controls, beside the three runs of ffprobe and ffmpeg that it
// takes.
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

const std::map<std::string, Budget> budgets = {{"1080p", {1.10, 0}}, {"4K", {1.05, 0}}};
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
    window.open(path); // reads the file from the disk
    return measureInTurn(
        count, [&] { return window.open(path); }, [&] { return runBareTools(path, duration, stillPath); });
}

void measureSizes(const Setting& setting, BenchWindow& window)
{
    setting.report.beginGrowth("Opening, by picture size", {"clip", "open", "three bare runs", "ratio"});
    for (const std::string size : pictureSizes) {
        const Pairs pairs = measureClip(window, setting.clip(size), setting.rounds(rounds));
        auto cells = cellsOf(pairs);
        cells.insert(cells.begin(), size);
        setting.report.addGrowth(cells);
        if (const auto budget = budgets.find(size); budget != budgets.end())
            setting.report.compare("open a " + size + " clip: choice to enabled controls",
                "ffprobe, ffmpeg, ffmpeg", pairs, budget->second);
    }
}

void measureGroup(const Setting& setting, BenchWindow& window, const std::string& title,
    const std::vector<std::string>& names)
{
    setting.report.beginGrowth(title, {"clip", "open", "three bare runs", "ratio"});
    for (const auto& name : names) {
        auto cells = cellsOf(measureClip(window, setting.clip(name), setting.rounds(rounds)));
        cells.insert(cells.begin(), name);
        setting.report.addGrowth(cells);
    }
}

} // namespace

void measureOpening(const Setting& setting)
{
    BenchWindow window;
    measureSizes(setting, window);
    std::vector<std::string> lengths = {"10 s", "1 min", "10 min", "1 h"};
    if (setting.isQuick)
        lengths.pop_back();
    measureGroup(setting, window, "Opening, by length (320 x 180)", lengths);
    measureGroup(setting, window, "Opening, by number of tracks",
        {"1 track", "5 tracks", "10 tracks", "20 tracks", "40 tracks"});
}

} // namespace tarnwell::bench
