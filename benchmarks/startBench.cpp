// SPDX-License-Identifier: MIT
// Measures the time from the start of the program to its first painted window, with an empty Qt window as the
// reference, and lists the libraries that are loaded then.
//
//   startBench FOLDER [--quick]
//
// The report is written into FOLDER. The exit status is 1 if a figure is over its budget, 2 if one could not
// be measured.
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
constexpr unsigned int startTimeout = 60; // seconds
constexpr Budget startBudget{2.0, 0};

const std::string buildFolder = TARNWELL_BUILD_FOLDER;
const std::string program = buildFolder + "/bin/tarnwell";
const std::string bareWindow = buildFolder + "/bench/bareWindow";

/// One start of a program: the time to the first paint, and /proc/PID/maps at that moment.
struct Start {
    double milliseconds = 0;
    std::string maps;
};

/// Starts the program with the first-paint plugin, which ends it after the first paint.
Start startProgram(const std::string& path, const std::string& folder)
{
    const std::string file = folder + "/first-paint";
    ::alarm(startTimeout); // ends this process if no window is painted
    const auto begin = std::chrono::steady_clock::now().time_since_epoch();
    millisecondsToRun({path, {},
        {"QT_QPA_GENERIC_PLUGINS=first-paint", "QT_PLUGIN_PATH=" + buildFolder + "/bench/plugins",
            "FIRST_PAINT_FILE=" + file}});
    ::alarm(0);
    std::ifstream report(file);
    std::int64_t painted = 0;
    if (!(report >> painted))
        exitWithError(path + " did not report its first paint");
    const auto took = painted - std::chrono::nanoseconds(begin).count();
    const std::string maps{std::istreambuf_iterator<char>(report), std::istreambuf_iterator<char>()};
    ::unlink(file.c_str());
    return {static_cast<double>(took) / nanosecondsPerMillisecond, maps};
}

/// Drops the page cache except pages in use. Returns false without root.
bool dropPageCache()
{
    ::sync();
    const int file = ::open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC);
    const bool isDone = file >= 0 && ::write(file, "3", 1) == 1;
    ::close(file);
    return isDone;
}

void measureWarmStart(Report& report, const std::string& folder, int rounds)
{
    startProgram(program, folder);
    startProgram(bareWindow, folder);
    report.compare("start to first painted window, warm", "bare Qt window of the same size",
        measureAlternating(
            rounds, [&] { return startProgram(program, folder).milliseconds; },
            [&] { return startProgram(bareWindow, folder).milliseconds; }),
        startBudget);
}

void measureColdStart(Report& report, const std::string& folder, int rounds)
{
    const std::string what = "start to first painted window, cold";
    if (!dropPageCache()) {
        report.addNotMeasured(what, "only root can empty the page cache");
        return;
    }
    const auto coldStart = [&folder](const std::string& path) {
        dropPageCache();
        return startProgram(path, folder).milliseconds;
    };
    report.compare(what, "bare Qt window of the same size",
        measureAlternating(
            rounds, [&] { return coldStart(program); }, [&] { return coldStart(bareWindow); }),
        startBudget);
}

void listLibraries(Report& report, const std::string& folder)
{
    const Libraries libraries = librariesIn(startProgram(program, folder).maps);
    const Libraries bareLibraries = librariesIn(startProgram(bareWindow, folder).maps);
    const Reasons reasons = readReasons(TARNWELL_REASONS);
    int unknown = 0;
    report.beginTable("Libraries loaded when the first window is painted",
        {"library", "also in a bare Qt window", "reason"});
    for (const auto& library : libraries) {
        const std::string reason = reasonFor(library, reasons);
        unknown += reason.empty() ? 1 : 0;
        report.addRow({library, bareLibraries.contains(library) ? "yes" : "no",
            reason.empty() ? "**no reason**" : reason});
    }
    report.add({"libraries loaded at start", std::to_string(libraries.size()),
        "bare Qt window: " + std::to_string(bareLibraries.size()), "",
        std::to_string(unknown) + " without a reason; 0 allowed", unknown > 0});
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2)
        exitWithError("startBench needs a folder");
    const bool isQuick = argc > 2 && std::string(argv[2]) == "--quick";
    const std::string folder = argv[1];
    Report report(folder);
    measureColdStart(report, folder, isQuick ? 3 : 7);
    measureWarmStart(report, folder, isQuick ? 7 : 25);
    listLibraries(report, folder);
    return report.isOverBudget() ? 1 : 0;
}
