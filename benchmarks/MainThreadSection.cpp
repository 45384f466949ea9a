// SPDX-License-Identifier: MIT
// Measures the processor time and the stalls of the main thread during an export, also as a function of the
// number of status lines per second.
#include "benchmarks/BenchWindow.h"
#include "benchmarks/MainThreadLoad.h"
#include "benchmarks/Sections.h"
#include "tests/support/FakeTools.h"

#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

constexpr double maxPercent = 1;
constexpr double maxStall = 50; // milliseconds
constexpr int rounds = 3;

/// One export: the main thread's processor time in percent of the elapsed time.
struct Load {
    double percent = 0;
    double milliseconds = 0; // elapsed time of the export
};

Load measureLoad(BenchWindow& window, const char* mode, const std::string& output)
{
    MainThreadLoad load;
    const double elapsed = window.save(
        mode, output, [&] { load.begin(); }, [&] { load.end(); });
    ::unlink(output.c_str());
    return {load.percent(), elapsed};
}

/// One export: the longest delay of a timer on the main thread and of a sleep on an idle thread, in
/// milliseconds.
struct Stall {
    double main = 0;
    double idle = 0;
};

/// Measured in a separate export, because the timer itself uses processor time.
Stall measureStall(BenchWindow& window, const char* mode, const std::string& output)
{
    StallDetector stalls;
    window.save(
        mode, output, [&] { stalls.begin(); }, [&] { stalls.end(); });
    ::unlink(output.c_str());
    return {stalls.longest(), stalls.longestIdle()};
}

void measureTranscode(const BenchContext& context)
{
    BenchWindow window;
    const std::string output = context.folder + "/out.mp4";
    window.open(context.clip("1080p"));
    window.click("rotateRightBTN");
    std::vector<double> percents;
    std::vector<double> stalls;
    std::vector<double> idle;
    for (int round = 0; round < context.rounds(rounds); ++round) {
        percents.push_back(measureLoad(window, "Transcode", output).percent);
        const Stall stall = measureStall(window, "Transcode", output);
        stalls.push_back(stall.main);
        idle.push_back(stall.idle);
    }
    const double percent = summaryOf(percents).median;
    const double stall = summaryOf(stalls).median;
    context.report.add({"main thread during a transcode: share of a core", formatNumber(percent, 2) + " %",
        "", "", formatNumber(maxPercent, 0) + " %", percent > maxPercent});
    context.report.add({"main thread during a transcode: longest stall", formatTime(stall),
        "an idle thread in the same process: " + formatTime(summaryOf(idle).median), "", formatTime(maxStall),
        stall > maxStall});
}

/// The script of a fake encoder that prints this many status lines per second for three seconds and then
/// copies the clip to its output.
std::string encoderScript(int linesPerSecond, const std::string& clip)
{
    constexpr int seconds = 3;
    const std::string pause = "sleep " + std::to_string(1000 / linesPerSecond) + "\n";
    std::string script;
    for (int line = 0; line < seconds * linesPerSecond; ++line) {
        const int hundredths = line * 900 / (seconds * linesPerSecond);
        char stamp[16];
        std::snprintf(stamp, sizeof stamp, "%02d.%02d", hundredths / 100, hundredths % 100);
        script.append("error time=00:00:").append(stamp).append("\\n\n").append(pause);
    }
    return script + "copy " + clip + "\n";
}

void measureStatusLines(const BenchContext& context)
{
    test::FakeTools tools;
    tools.useRealSniffer();
    tools.useRealCreator();
    BenchWindow window(tools.context());
    const std::string clip = context.clip("1080p");
    const std::string output = context.folder + "/out.mp4";
    window.open(clip);
    window.click("rotateRightBTN");
    context.report.beginTable("Main thread during an export, by status lines per second",
        {"target lines/s", "actual lines/s", "share of a core", "longest stall", "idle thread"});
    for (const int linesPerSecond : {2, 10, 100, 1000}) {
        tools.setCreator(encoderScript(linesPerSecond, clip));
        const Load load = measureLoad(window, "Transcode", output);
        const Stall stall = measureStall(window, "Transcode", output);
        context.report.addRow(
            {std::to_string(linesPerSecond), formatNumber(linesPerSecond * 3 / (load.milliseconds / 1000), 0),
                formatNumber(load.percent, 2) + " %", formatTime(stall.main), formatTime(stall.idle)});
    }
}

} // namespace

void measureMainThread(const BenchContext& context)
{
    measureTranscode(context);
    measureStatusLines(context);
}

} // namespace tarnwell::bench
