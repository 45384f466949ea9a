// SPDX-License-Identifier: MIT
// What an export asks of the main thread, and how that grows with the encoder's status lines.
#include "benchmarks/BenchWindow.h"
#include "benchmarks/MainThreadWatch.h"
#include "benchmarks/Sections.h"
#include "tests/support/FakeTools.h"

#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

constexpr double mostPercent = 1;
constexpr double longestStall = 50; // milliseconds
constexpr int rounds = 3;

struct Load {
    double percent = 0;
    double milliseconds = 0;
};

Load measureLoad(BenchWindow& window, const char* mode, const std::string& output)
{
    MainThreadLoad load;
    const double elapsed = window.save(
        mode, output, [&] { load.begin(); }, [&] { load.end(); });
    ::unlink(output.c_str());
    return {load.percent(), elapsed};
}

struct Stall {
    double main = 0;
    double idle = 0;
};

/// A run of its own: the timer costs time itself.
Stall measureStall(BenchWindow& window, const char* mode, const std::string& output)
{
    StallWatch stalls;
    window.save(
        mode, output, [&] { stalls.begin(); }, [&] { stalls.end(); });
    ::unlink(output.c_str());
    return {stalls.longest(), stalls.longestOfIdleThread()};
}

void measureTranscode(const Setting& setting)
{
    BenchWindow window;
    const std::string output = setting.folder + "/out.mp4";
    window.open(setting.clip("1080p"));
    window.click("rotateRightBTN");
    std::vector<double> percents;
    std::vector<double> stalls;
    std::vector<double> idle;
    for (int round = 0; round < setting.rounds(rounds); ++round) {
        percents.push_back(measureLoad(window, "Transcode", output).percent);
        const Stall stall = measureStall(window, "Transcode", output);
        stalls.push_back(stall.main);
        idle.push_back(stall.idle);
    }
    const double percent = summaryOf(percents).median;
    const double stall = summaryOf(stalls).median;
    setting.report.add({"main thread during a transcode: share of a core", withDigits(percent, 2) + " %", "",
        "", withDigits(mostPercent, 0) + " %", percent > mostPercent});
    setting.report.add({"main thread during a transcode: longest stall", timeText(stall),
        "an idle thread beside it: " + timeText(summaryOf(idle).median), "", timeText(longestStall),
        stall > longestStall});
}

/// An encoder that tells its progress so often each second, for a few seconds, and then leaves the clip as
/// its output.
std::string encoderTelling(int linesPerSecond, const std::string& clip)
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

void measureStatusLines(const Setting& setting)
{
    test::FakeTools tools;
    tools.useRealSniffer();
    tools.useRealCreator();
    BenchWindow window(tools.context());
    const std::string clip = setting.clip("1080p");
    const std::string output = setting.folder + "/out.mp4";
    window.open(clip);
    window.click("rotateRightBTN");
    setting.report.beginGrowth("Main thread during an export, by status lines per second",
        {"lines meant", "lines that came", "share of a core", "longest stall", "an idle thread's"});
    for (const int linesPerSecond : {2, 10, 100, 1000}) {
        tools.setCreator(encoderTelling(linesPerSecond, clip));
        const Load load = measureLoad(window, "Transcode", output);
        const Stall stall = measureStall(window, "Transcode", output);
        setting.report.addGrowth(
            {std::to_string(linesPerSecond), withDigits(linesPerSecond * 3 / (load.milliseconds / 1000), 0),
                withDigits(load.percent, 2) + " %", timeText(stall.main), timeText(stall.idle)});
    }
}

} // namespace

void measureMainThread(const Setting& setting)
{
    measureTranscode(setting);
    measureStatusLines(setting);
}

} // namespace tarnwell::bench
