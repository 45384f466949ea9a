// SPDX-License-Identifier: MIT
// From the start of the program to its first painted window, beside a bare window of Qt's, and what is loaded
// by then.
//
//   startBench FOLDER [--quick]
//
// FOLDER gets the rows of the report. The exit status is 1 when a figure is over its budget, 2 when one could
// not be measured.
#include "benchmarks/Commands.h"
#include "benchmarks/Libraries.h"
#include "benchmarks/Measure.h"
#include "benchmarks/Report.h"

#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace
{

using namespace tarnwell::bench;

constexpr double nanosecondsPerMillisecond = 1e6;
constexpr unsigned int longestStart = 60; // seconds
constexpr Budget startBudget{1.3, 0};

const std::string buildFolder = TARNWELL_BUILD_FOLDER;
const std::string program = buildFolder + "/bin/tarnwell";
const std::string bareWindow = buildFolder + "/bench/bareWindow";

struct Start {
    double milliseconds = 0;
    std::string maps;
};

/// Starts the program; it ends itself once it is painted.
Start startOf(const std::string& path, const std::string& folder)
{
    const std::string file = folder + "/first-paint";
    ::alarm(longestStart); // ends this program where no window comes
    const auto begin = std::chrono::steady_clock::now().time_since_epoch();
    millisecondsToRun({path, {},
        {"QT_QPA_GENERIC_PLUGINS=first-paint", "QT_PLUGIN_PATH=" + buildFolder + "/bench/plugins",
            "FIRST_PAINT_FILE=" + file}});
    ::alarm(0);
    std::ifstream report(file);
    std::int64_t painted = 0;
    if (!(report >> painted))
        giveUp(path + " did not tell when it was painted");
    const auto took = painted - std::chrono::nanoseconds(begin).count();
    const std::string maps{std::istreambuf_iterator<char>(report), std::istreambuf_iterator<char>()};
    ::unlink(file.c_str());
    return {static_cast<double>(took) / nanosecondsPerMillisecond, maps};
}

/// Has the system forget what it has read from the disk, but for what is in use. False where that takes root.
bool forgetFiles()
{
    ::sync();
    const int file = ::open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC);
    const bool isDone = file >= 0 && ::write(file, "3", 1) == 1;
    ::close(file);
    return isDone;
}

void measureWarmStart(Report& report, const std::string& folder, int rounds)
{
    startOf(program, folder);
    startOf(bareWindow, folder);
    report.compare("start to first painted window, warm", "bare Qt window of the same size",
        measureInTurn(
            rounds, [&] { return startOf(program, folder).milliseconds; },
            [&] { return startOf(bareWindow, folder).milliseconds; }),
        startBudget);
}

void measureColdStart(Report& report, const std::string& folder, int rounds)
{
    const std::string what = "start to first painted window, cold";
    if (!forgetFiles()) {
        report.addNotMeasured(what, "only root can empty the page cache");
        return;
    }
    const auto coldStart = [&folder](const std::string& path) {
        forgetFiles();
        return startOf(path, folder).milliseconds;
    };
    report.compare(what, "bare Qt window of the same size",
        measureInTurn(
            rounds, [&] { return coldStart(program); }, [&] { return coldStart(bareWindow); }),
        startBudget);
}

void listLibraries(Report& report, const std::string& folder)
{
    const Libraries libraries = librariesIn(startOf(program, folder).maps);
    const Libraries bareLibraries = librariesIn(startOf(bareWindow, folder).maps);
    const Reasons reasons = readReasons(TARNWELL_REASONS);
    int unknown = 0;
    report.beginGrowth(
        "Libraries loaded when the first window is painted", {"library", "in a bare Qt window too", "why"});
    for (const auto& library : libraries) {
        const std::string reason = reasonFor(library, reasons);
        unknown += reason.empty() ? 1 : 0;
        report.addGrowth({library, bareLibraries.contains(library) ? "yes" : "no",
            reason.empty() ? "**no reason known**" : reason});
    }
    report.add({"libraries loaded at start", std::to_string(libraries.size()),
        "bare Qt window: " + std::to_string(bareLibraries.size()), "",
        std::to_string(unknown) + " without a reason; none may be", unknown > 0});
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2)
        giveUp("startBench needs a folder");
    const bool isQuick = argc > 2 && std::string(argv[2]) == "--quick";
    const std::string folder = argv[1];
    Report report(folder);
    measureColdStart(report, folder, isQuick ? 3 : 7);
    measureWarmStart(report, folder, isQuick ? 7 : 25);
    listLibraries(report, folder);
    return report.isOverBudget() ? 1 : 0;
}
