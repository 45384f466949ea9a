// SPDX-License-Identifier: MIT
#include "tests/faults/FailurePlan.h"

#include "tests/faults/Preloaded.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <string>
#include <unistd.h>

namespace
{

/// The function and the number of its call that fails; number 0 for none, everyCall for all.
constexpr int everyCall = -1;
struct Plan {
    char call[32] = {};
    int number = 0;
};

Plan readPlan()
{
    Plan plan;
    const char* text = std::getenv("TARNWELL_FAILS");
    if (text != nullptr)
        std::sscanf(text, "%31s %d", plan.call, &plan.number);
    return plan;
}

const Plan plan = readPlan();
std::atomic<int> calls = 0;
std::atomic<bool> isCounting = std::getenv("TARNWELL_COUNT_ON_REQUEST") == nullptr;

/// Whether the caller is in the program itself or in the C++ library, by the file name of the loaded object.
bool isOwn(const void* caller)
{
    Dl_info info = {};
    if (::dladdr(caller, &info) == 0 || info.dli_fname == nullptr)
        return false;
    const char* name = std::strrchr(info.dli_fname, '/');
    name = name != nullptr ? name + 1 : info.dli_fname;
    return std::strncmp(name, "lib", 3) != 0 || std::strncmp(name, "libstdc++", 9) == 0;
}

/// Writes the text to the file that the environment variable names. Does nothing without the variable.
void writeNote(const char* variable, const std::string& text)
{
    static const auto openReally = real<int (*)(const char*, int, ...)>("open");
    static const auto writeReally = real<ssize_t (*)(int, const void*, size_t)>("write");
    const char* path = std::getenv(variable);
    const int file = path != nullptr ? openReally(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0600) : -1;
    if (file < 0)
        return;
    [[maybe_unused]] const auto count = writeReally(file, text.data(), text.size());
    ::close(file);
}

/// The number of calls per function if TARNWELL_COUNTS names a file. Writes them there when the process
/// exits.
class CallCounts
{
public:
    ~CallCounts()
    {
        std::string lines;
        for (const auto& [call, count] : m_counts)
            lines += call + " " + std::to_string(count) + "\n";
        writeNote(variable, lines);
    }

    bool areRequested() const { return m_areRequested; }

    void add(const char* call)
    {
        const std::lock_guard lock(m_mutex);
        ++m_counts[call];
    }

private:
    static constexpr const char* variable = "TARNWELL_COUNTS";

    const bool m_areRequested = std::getenv(variable) != nullptr;
    std::mutex m_mutex;
    std::map<std::string, int> m_counts;
};

CallCounts counts;

} // namespace

void waitIfRequested(const char* variable)
{
    const char* path = std::getenv(variable);
    if (path == nullptr)
        return;
    ::close(::creat((std::string(path) + ".waiting").c_str(), 0600));
    while (::access(path, F_OK) != 0)
        ::usleep(1000);
}

bool shouldFail(const char* call, const void* caller)
{
    const bool isPlanned = std::strcmp(call, plan.call) == 0;
    if (!isCounting || !(isPlanned || counts.areRequested()) || !isOwn(caller))
        return false;
    if (counts.areRequested())
        counts.add(call);
    if (!isPlanned || (++calls != plan.number && plan.number != everyCall))
        return false;
    writeNote("TARNWELL_FAILED", "failed\n");
    const bool waits = std::getenv("TARNWELL_WAITS_FOR") != nullptr;
    waitIfRequested("TARNWELL_WAITS_FOR");
    return !waits;
}

void countFailingCalls(bool count)
{
    isCounting = count;
}
