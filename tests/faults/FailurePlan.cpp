// SPDX-License-Identifier: MIT
#include "tests/faults/FailurePlan.h"

#include "tests/faults/Preloaded.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
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

void recordFailure()
{
    static const auto openReally = real<int (*)(const char*, int, ...)>("open");
    static const auto writeReally = real<ssize_t (*)(int, const void*, size_t)>("write");
    const char* path = std::getenv("TARNWELL_FAILED");
    const int file = path != nullptr ? openReally(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0600) : -1;
    if (file < 0)
        return;
    [[maybe_unused]] const auto count = writeReally(file, "failed\n", 7);
    ::close(file);
}

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
    if (!isCounting || std::strcmp(call, plan.call) != 0 || !isOwn(caller)
        || (++calls != plan.number && plan.number != everyCall))
        return false;
    recordFailure();
    const bool waits = std::getenv("TARNWELL_WAITS_FOR") != nullptr;
    waitIfRequested("TARNWELL_WAITS_FOR");
    return !waits;
}

void countFailingCalls(bool count)
{
    isCounting = count;
}
