// SPDX-License-Identifier: MIT
// Measures the application's memory after opening a 4K clip, after clicks, and during an export.
#include "benchmarks/BenchWindow.h"
#include "benchmarks/Sections.h"
#include "tests/support/Files.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace tarnwell::bench
{

namespace
{

constexpr double mebibyte = 1 << 20;
// The budget: this many stills plus a constant.
constexpr double budgetStills = 4;
constexpr double budgetBase = 60; // MiB
constexpr double maxGrowth = 2; // MiB, during an export
constexpr std::chrono::milliseconds samplingInterval(100);

/// The value of a line such as "Pss:   1234 kB" in the file, in MiB; 0 if there is no such line.
double mebibytesAfterLabel(const std::string& label, const std::string& path)
{
    const std::string text = test::contentsOf(path);
    const auto place = text.find("\n" + label + ":");
    return place == std::string::npos ? 0 : std::stod(text.substr(place + label.size() + 2)) / 1024;
}

/// Memory of this process in MiB.
struct Memory {
    double proportional = 0; // PSS: shared pages are divided by the number of processes
    double resident = 0;
    double peak = 0; // of resident memory since `resetPeak`
};

Memory memoryNow()
{
    return {mebibytesAfterLabel("Pss", "/proc/self/smaps_rollup"),
        mebibytesAfterLabel("VmRSS", "/proc/self/status"), mebibytesAfterLabel("VmHWM", "/proc/self/status")};
}

void resetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

std::string mebibytes(double amount)
{
    return formatNumber(amount, 0) + " MiB";
}

/// Samples the resident memory every 100 ms on its own thread until `finish`, which returns the samples in
/// MiB.
class MemorySampler
{
public:
    MemorySampler()
        : m_thread([this] {
            while (!m_isOver) {
                m_samples.push_back(mebibytesAfterLabel("VmRSS", "/proc/self/status"));
                std::this_thread::sleep_for(samplingInterval);
            }
        })
    {
    }

    std::vector<double> finish()
    {
        m_isOver = true;
        m_thread.join();
        return m_samples;
    }

private:
    std::vector<double> m_samples;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

/// The median of the last tenth of the samples minus that of the second tenth. The first tenth includes the
/// creation of the progress sheet.
double growthOf(const std::vector<double>& samples)
{
    const auto tenth = static_cast<std::ptrdiff_t>(samples.size() / 10 + 1);
    const auto median = [](auto begin, auto end) { return summaryOf({begin, end}).median; };
    if (static_cast<std::ptrdiff_t>(samples.size()) < 3 * tenth)
        exitWithError("the export was too short to measure the growth of memory");
    return median(samples.end() - tenth, samples.end())
        - median(samples.begin() + tenth, samples.begin() + 2 * tenth);
}

void addMemoryRow(const BenchContext& context, const std::string& what, const Memory& memory, double still)
{
    const double budget = budgetStills * still + budgetBase;
    context.report.add({what,
        "peak " + mebibytes(memory.peak) + ", now " + mebibytes(memory.resident) + " (PSS "
            + mebibytes(memory.proportional) + ")",
        "the still: " + mebibytes(still), formatNumber(memory.peak / still, 1) + " stills",
        "4 stills + 60 MiB = " + mebibytes(budget), memory.peak > budget});
}

} // namespace

void measureMemory(const BenchContext& context)
{
    BenchWindow window;
    const Memory empty = memoryNow();
    window.open(context.clip("4K"));
    const double still = static_cast<double>(window.picture().sizeInBytes()) / mebibyte;
    context.report.add({"memory, empty window",
        mebibytes(empty.resident) + " (PSS " + mebibytes(empty.proportional) + ")", "", "", "", false});
    addMemoryRow(context, "memory, after opening a 4K clip", memoryNow(), still);
    resetPeak();
    for (const char* button :
        {"rotateRightBTN", "flipHorizontallyBTN", "flipHorizontallyBTN", "rotateRightBTN"})
        window.click(button);
    addMemoryRow(context, "memory, after turning and mirroring it", memoryNow(), still);
    resetPeak();
    std::unique_ptr<MemorySampler> watch;
    std::vector<double> samples;
    const std::string output = context.folder + "/out.mp4";
    window.save(
        "Transcode", output, [&] { watch = std::make_unique<MemorySampler>(); },
        [&] { samples = watch->finish(); });
    ::unlink(output.c_str());
    addMemoryRow(context, "memory, during its export", memoryNow(), still);
    const double growth = growthOf(samples);
    context.report.add({"memory, growth during its export", formatNumber(growth, 1) + " MiB", "", "",
        mebibytes(maxGrowth), growth > maxGrowth});
}

} // namespace tarnwell::bench
