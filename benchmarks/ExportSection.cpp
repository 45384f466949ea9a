// SPDX-License-Identifier: MIT
// From the click on the way of saving to the result, beside the bare encoder and other ways to the same file.
#include "benchmarks/BareTools.h"
#include "benchmarks/BenchWindow.h"
#include "benchmarks/Sections.h"

#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

constexpr Budget encoderBudget{1.01, 150};
constexpr Budget fileCopyBudget{1.15, 120};
constexpr Budget otherWriterBudget{0.6, 0};

constexpr int transcodeRounds = 7;
constexpr int flagRounds = 7;

const std::string otherWriter = "exiftool";

/// The output of a run, on the disk of the clips; gone afterwards, and what earlier runs wrote is on the disk
/// before.
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

Command fileCopyToTheDisk(const std::string& input, const std::string& output)
{
    return {"sh", {"-c", "cp -- \"$1\" \"$2\" && sync -- \"$2\"", "sh", input, output}};
}

Command rotationByOtherWriter(const std::string& input, const std::string& output)
{
    return {otherWriter, {"-q", "-api", "LargeFileSupport=1", "-Rotation=90", "-o", output, input}};
}

void measureTranscode(const Setting& setting, BenchWindow& window)
{
    const std::string input = setting.clip("1080p");
    const std::string output = setting.folder + "/transcoded.mp4";
    window.open(input);
    window.click("rotateRightBTN");
    setting.report.compare("transcode 9 s of 1080p: click to result", "ffmpeg with the same list",
        measureInTurn(
            setting.rounds(transcodeRounds),
            [&] { return runFresh(output, [&] { return window.save("Transcode", output); }); },
            [&] {
                return runFresh(output, [&] { return millisecondsToRun(bareTranscode(input, output)); });
            }),
        encoderBudget);
}

/// What a fix flag is compared with, all in turn in one loop.
struct FlagPairs {
    Pairs cp;
    Pairs ffmpeg;
    Pairs toTheDisk;
    Pairs other;
};

FlagPairs measureFlag(
    const Setting& setting, BenchWindow& window, const std::string& input, bool withOtherWriter)
{
    const std::string output = setting.folder + "/flagged.mp4";
    const auto time = [&](const Command& command) {
        return runFresh(output, [&] { return millisecondsToRun(command); });
    };
    window.open(input);
    window.click("rotateRightBTN");
    millisecondsToRun({"cat", {input}}); // all of it is read from memory then
    FlagPairs pairs;
    for (int round = 0; round < setting.rounds(flagRounds); ++round) {
        // A virtual machine may have to get the memory back that the last round has freed: not for the first
        // only.
        time(fileCopy(input, output));
        const double saved = runFresh(output, [&] { return window.save("Fix Flag", output); });
        pairs.cp.add(saved, time(fileCopy(input, output)));
        pairs.ffmpeg.add(saved, time(bareFixFlag(input, output)));
        pairs.toTheDisk.add(saved, time(fileCopyToTheDisk(input, output)));
        if (withOtherWriter)
            pairs.other.add(saved, time(rotationByOtherWriter(input, output)));
    }
    return pairs;
}

void measureLargeFile(const Setting& setting, BenchWindow& window, const std::string& size)
{
    const bool hasOtherWriter = isInstalled(otherWriter);
    const FlagPairs pairs = measureFlag(setting, window, setting.clip(size), hasOtherWriter);
    const std::string what = "fix flag of " + size + ": click to result";
    setting.report.compare(what, "cp, then sync of the file", pairs.toTheDisk, fileCopyBudget);
    setting.report.compare(what, "cp", pairs.cp);
    setting.report.compare(what, "ffmpeg with the same list", pairs.ffmpeg);
    if (hasOtherWriter)
        setting.report.compare(what, otherWriter + " to a new file", pairs.other, otherWriterBudget);
    else
        setting.report.addNotMeasured(what + ", against " + otherWriter,
            "it is missing; \"apt-get install libimage-exiftool-perl\" gets it");
}

void measureLengths(const Setting& setting, BenchWindow& window)
{
    setting.report.beginGrowth("Fix flag, by length (320 x 180)",
        {"clip", "click to result", "bare ffmpeg", "ratio", "cp", "ratio"});
    std::vector<std::string> lengths = {"10 s", "1 min", "10 min", "1 h"};
    if (setting.isQuick)
        lengths.pop_back();
    for (const auto& length : lengths) {
        const FlagPairs pairs = measureFlag(setting, window, setting.clip(length), false);
        setting.report.addGrowth({length, timeText(summaryOf(pairs.ffmpeg.measured)),
            timeText(summaryOf(pairs.ffmpeg.against)), withDigits(pairs.ffmpeg.ratio(), 2),
            timeText(summaryOf(pairs.cp.against)), withDigits(pairs.cp.ratio(), 2)});
    }
}

} // namespace

void measureExports(const Setting& setting)
{
    BenchWindow window;
    measureTranscode(setting, window);
    measureLargeFile(setting, window, "0.5 GB");
    if (!setting.isQuick)
        measureLargeFile(setting, window, "2 GB");
    measureLengths(setting, window);
}

} // namespace tarnwell::bench
