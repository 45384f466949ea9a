// SPDX-License-Identifier: MIT
// The application's memory after it has opened a 4K clip, after clicks, and during an export.
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
constexpr double stills = 4;
constexpr double beside = 60; // MiB
constexpr double flat = 2; // MiB
constexpr std::chrono::milliseconds samplingInterval(100);

/// The number of kB behind the label in a text of lines such as "Pss:   1234 kB", in MiB.
double mebibytesBehind(const std::string& label, const std::string& path)
{
    const std::string text = test::contentsOf(path);
    const auto place = text.find("\n" + label + ":");
    return place == std::string::npos ? 0 : std::stod(text.substr(place + label.size() + 2)) / 1024;
}

struct Memory {
    double shared = 0; // the share of this process, PSS
    double resident = 0;
    double peak = 0; // of resident memory, since the last reset
};

Memory memoryNow()
{
    return {mebibytesBehind("Pss", "/proc/self/smaps_rollup"), mebibytesBehind("VmRSS", "/proc/self/status"),
        mebibytesBehind("VmHWM", "/proc/self/status")};
}

void resetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

std::string mebibytes(double amount)
{
    return withDigits(amount, 0) + " MiB";
}

/// Looks at the resident memory again and again while it lives, on a thread of its own.
class MemoryWatch
{
public:
    MemoryWatch()
        : m_thread([this] {
            while (!m_isOver) {
                m_samples.push_back(mebibytesBehind("VmRSS", "/proc/self/status"));
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

/// By how much the last tenth lies above the second tenth: in the first the sheet is set up.
double growthOf(const std::vector<double>& samples)
{
    const auto tenth = static_cast<std::ptrdiff_t>(samples.size() / 10 + 1);
    const auto median = [](auto begin, auto end) { return summaryOf({begin, end}).median; };
    if (static_cast<std::ptrdiff_t>(samples.size()) < 3 * tenth)
        giveUp("the export was too short to tell how memory grows");
    return median(samples.end() - tenth, samples.end())
        - median(samples.begin() + tenth, samples.begin() + 2 * tenth);
}

void judge(const Setting& setting, const std::string& what, const Memory& memory, double still)
{
    const double most = stills * still + beside;
    setting.report.add({what,
        mebibytes(memory.peak) + " at most, now " + mebibytes(memory.resident) + " (share "
            + mebibytes(memory.shared) + ")",
        "the still: " + mebibytes(still), withDigits(memory.peak / still, 1) + " stills",
        "4 stills + 60 MiB = " + mebibytes(most), memory.peak > most});
}

} // namespace

void measureMemory(const Setting& setting)
{
    BenchWindow window;
    const Memory empty = memoryNow();
    window.open(setting.clip("4K"));
    const double still = static_cast<double>(window.picture().sizeInBytes()) / mebibyte;
    setting.report.add({"memory, empty window",
        mebibytes(empty.resident) + " (share " + mebibytes(empty.shared) + ")", "", "", "", false});
    judge(setting, "memory, after opening a 4K clip", memoryNow(), still);
    resetPeak();
    for (const char* button :
        {"rotateRightBTN", "flipHorizontallyBTN", "flipHorizontallyBTN", "rotateRightBTN"})
        window.click(button);
    judge(setting, "memory, after turning and mirroring it", memoryNow(), still);
    resetPeak();
    std::unique_ptr<MemoryWatch> watch;
    std::vector<double> samples;
    const std::string output = setting.folder + "/out.mp4";
    window.save(
        "Transcode", output, [&] { watch = std::make_unique<MemoryWatch>(); },
        [&] { samples = watch->finish(); });
    ::unlink(output.c_str());
    judge(setting, "memory, during its export", memoryNow(), still);
    const double growth = growthOf(samples);
    setting.report.add({"memory, growth from the export's begin to its end", withDigits(growth, 1) + " MiB",
        "", "", "flat: " + mebibytes(flat) + " at most", growth > flat});
}

} // namespace tarnwell::bench
