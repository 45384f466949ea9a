// SPDX-License-Identifier: MIT
// Measures the time from the click on the save mode to the result. The references are a direct run of ffmpeg
// and other programs that write a comparable file.
#include "benchmarks/BareTools.h"
#include "benchmarks/BenchWindow.h"
#include "benchmarks/Sections.h"

#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

constexpr Budget encoderBudget{1.01, 150};
// Against cp followed by sync of the file.
constexpr Budget fileCopyBudget{1.15, 120};
constexpr Budget exiftoolBudget{0.6, 0};

constexpr int transcodeRounds = 7;
constexpr int flagRounds = 7;

const std::string exiftool = "exiftool";

/// Flushes pending writes of earlier runs to the disk, calls `run` and removes its output.
double runFresh(const std::string& output, const std::function<double()>& run)
{
    ::sync();
    const double elapsed = run();
    ::unlink(output.c_str());
    return elapsed;
}

Command fileCopy(const std::string& input, const std::string& output)
{
    return {"cp", {input, output}};
}

Command fileCopyWithFsync(const std::string& input, const std::string& output)
{
    return {"sh", {"-c", "cp -- \"$1\" \"$2\" && sync -- \"$2\"", "sh", input, output}};
}

Command rotationByExiftool(const std::string& input, const std::string& output)
{
    return {exiftool, {"-q", "-api", "LargeFileSupport=1", "-Rotation=90", "-o", output, input}};
}

void measureTranscode(const BenchContext& context, BenchWindow& window)
{
    const std::string input = context.clip("1080p");
    const std::string output = context.folder + "/transcoded.mp4";
    window.open(input);
    window.click("rotateRightBTN");
    context.report.compare("transcode 9 s of 1080p: click to result", "ffmpeg with the same list",
        measureAlternating(
            context.rounds(transcodeRounds),
            [&] { return runFresh(output, [&] { return window.save("Transcode", output); }); },
            [&] {
                return runFresh(output, [&] { return millisecondsToRun(bareTranscode(input, output)); });
            }),
        encoderBudget);
}

/// The times of a fix flag, each paired with those of one reference. All are measured in one loop.
struct FlagPairs {
    Pairs cp;
    Pairs ffmpeg;
    Pairs withFsync;
    Pairs other;
};

FlagPairs measureFlag(
    const BenchContext& context, BenchWindow& window, const std::string& input, bool withExiftool)
{
    const std::string output = context.folder + "/flagged.mp4";
    const auto time = [&](const Command& command) {
        return runFresh(output, [&] { return millisecondsToRun(command); });
    };
    window.open(input);
    window.click("rotateRightBTN");
    millisecondsToRun({"cat", {input}}); // puts the whole file into the page cache
    FlagPairs pairs;
    for (int round = 0; round < context.rounds(flagRounds); ++round) {
        // Not measured: a virtual machine may have to request freed memory from the host again, which would
        // slow down only the first measurement of a round.
        time(fileCopy(input, output));
        const double saved = runFresh(output, [&] { return window.save("Fix Flag", output); });
        pairs.cp.add(saved, time(fileCopy(input, output)));
        pairs.ffmpeg.add(saved, time(bareFixFlag(input, output)));
        pairs.withFsync.add(saved, time(fileCopyWithFsync(input, output)));
        if (withExiftool)
            pairs.other.add(saved, time(rotationByExiftool(input, output)));
    }
    return pairs;
}

void measureLargeFile(const BenchContext& context, BenchWindow& window, const std::string& size)
{
    const bool hasExiftool = isInstalled(exiftool);
    const FlagPairs pairs = measureFlag(context, window, context.clip(size), hasExiftool);
    const std::string what = "fix flag of " + size + ": click to result";
    context.report.compare(what, "cp, then sync of the file", pairs.withFsync, fileCopyBudget);
    context.report.compare(what, "cp", pairs.cp);
    context.report.compare(what, "ffmpeg with the same list", pairs.ffmpeg);
    if (hasExiftool)
        context.report.compare(what, exiftool + " to a new file", pairs.other, exiftoolBudget);
    else
        context.report.addNotMeasured(what + ", against " + exiftool,
            "not installed; \"apt-get install libimage-exiftool-perl\" installs it");
}

void measureLengths(const BenchContext& context, BenchWindow& window)
{
    context.report.beginTable("Fix flag, by length (320 x 180)",
        {"clip", "click to result", "bare ffmpeg", "ratio", "cp", "ratio"});
    std::vector<std::string> lengths = {"10 s", "1 min", "10 min", "1 h"};
    if (context.isQuick)
        lengths.pop_back();
    for (const auto& length : lengths) {
        const FlagPairs pairs = measureFlag(context, window, context.clip(length), false);
        context.report.addRow({length, formatTime(summaryOf(pairs.ffmpeg.measured)),
            formatTime(summaryOf(pairs.ffmpeg.reference)), formatNumber(pairs.ffmpeg.ratio(), 2),
            formatTime(summaryOf(pairs.cp.reference)), formatNumber(pairs.cp.ratio(), 2)});
    }
}

} // namespace

void measureExports(const BenchContext& context)
{
    BenchWindow window;
    measureTranscode(context, window);
    measureLargeFile(context, window, "0.5 GB");
    if (!context.isQuick)
        measureLargeFile(context, window, "2 GB");
    measureLengths(context, window);
}

} // namespace tarnwell::bench
