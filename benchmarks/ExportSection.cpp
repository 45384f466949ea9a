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

// The sound of the clip is AAC: creator copies it, and the plain list of ffmpeg encodes it again.
constexpr Budget transcodeBudget{1.0, 150};
// Against ffmpeg, which copies the streams of a QuickTime file as creator does.
constexpr Budget streamCopyBudget{1.05, 150};
constexpr Budget fileCopyBudget{1.15, 120};
constexpr Budget exiftoolBudget{0.6, 0};

constexpr int transcodeRounds = 7;
constexpr int flagRounds = 7;

const std::string exiftool = "exiftool";

/// The command that writes the reference's output.
using Reference = Command (*)(const std::string& input, const std::string& output);

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

Command fileCopyToDisk(const std::string& input, const std::string& output)
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
    context.report.compare("transcode 9 s of 1080p with AAC sound: click to result",
        "ffmpeg with the plain list",
        measureAlternating(
            context.rounds(transcodeRounds),
            [&] { return runFresh(output, [&] { return window.save("Transcode", output); }); },
            [&] {
                return runFresh(output, [&] { return millisecondsToRun(bareTranscode(input, output)); });
            }),
        transcodeBudget);
}

/// The times of a fix flag, paired with those of each reference. All are measured in one loop; the fix flag
/// is the first one of a round and the last one of the next.
std::vector<Pairs> measureFlag(const BenchContext& context, BenchWindow& window, const std::string& input,
    const std::vector<Reference>& references)
{
    const std::string output = context.folder + "/flagged.mp4";
    const auto time = [&](Reference reference) {
        return runFresh(output, [&] { return millisecondsToRun(reference(input, output)); });
    };
    const auto save = [&] { return runFresh(output, [&] { return window.save("Fix Flag", output); }); };
    window.open(input);
    window.click("rotateRightBTN");
    millisecondsToRun({"cat", {input}}); // puts the whole file into the page cache
    std::vector<Pairs> pairs(references.size());
    for (int round = 0; round < context.rounds(flagRounds); ++round) {
        // Not measured: a virtual machine may have to request freed memory from the host again, which would
        // slow down only the first measurement of a round.
        time(fileCopy);
        const bool isSavedFirst = round % 2 == 0;
        double saved = isSavedFirst ? save() : 0;
        std::vector<double> times;
        for (const Reference reference : references)
            times.push_back(time(reference));
        saved = isSavedFirst ? saved : save();
        for (std::size_t place = 0; place < times.size(); ++place)
            pairs[place].add(saved, times[place]);
    }
    return pairs;
}

void measureMp4(const BenchContext& context, BenchWindow& window, const std::string& size)
{
    const bool hasExiftool = isInstalled(exiftool);
    std::vector<Reference> references = {fileCopyToDisk};
    if (hasExiftool)
        references.push_back(rotationByExiftool);
    const auto pairs = measureFlag(context, window, context.clip(size), references);
    const std::string what = "fix flag of " + size + ", MP4: click to result";
    context.report.compare(what, "cp, then sync of the file", pairs[0], fileCopyBudget);
    if (hasExiftool)
        context.report.compare(what, exiftool + " to a new file", pairs[1], exiftoolBudget);
    else
        context.report.addNotMeasured(what + ", against " + exiftool,
            "not installed; \"apt-get install libimage-exiftool-perl\" installs it");
}

void measureQuickTime(const BenchContext& context, BenchWindow& window, const std::string& size)
{
    const auto pairs = measureFlag(context, window, context.folder + "/" + size + ".mov", {bareFixFlag});
    context.report.compare("fix flag of " + size + ", QuickTime: click to result",
        "ffmpeg with the plain list", pairs[0], streamCopyBudget);
}

void measureLengths(const BenchContext& context, BenchWindow& window)
{
    context.report.beginTable("Fix flag, by length (320 x 180)",
        {"clip", "click to result", "ffmpeg with the plain list", "ratio", "cp", "ratio"});
    std::vector<std::string> lengths = {"10 s", "1 min", "10 min", "1 h"};
    if (context.isQuick)
        lengths.pop_back();
    for (const auto& length : lengths) {
        const auto pairs = measureFlag(context, window, context.clip(length), {bareFixFlag, fileCopy});
        context.report.addRow({length, formatTime(summaryOf(pairs[0].measured)),
            formatTime(summaryOf(pairs[0].reference)), formatNumber(pairs[0].ratio(), 2),
            formatTime(summaryOf(pairs[1].reference)), formatNumber(pairs[1].ratio(), 2)});
    }
}

} // namespace

void measureExports(const BenchContext& context)
{
    BenchWindow window;
    measureTranscode(context, window);
    std::vector<std::string> sizes = {"0.5 GB", "2 GB"};
    if (context.isQuick)
        sizes.pop_back();
    for (const auto& size : sizes)
        measureMp4(context, window, size);
    measureQuickTime(context, window, "0.5 GB");
    measureLengths(context, window);
}

} // namespace tarnwell::bench
