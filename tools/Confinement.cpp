// SPDX-License-Identifier: MIT
#include "tools/Confinement.h"

#include "tools/CallFilter.h"
#include "tools/FileRules.h"

#include <algorithm>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// Seconds of processor time. A report on the longest film takes a few. ffprobe takes about a minute per 4 GB
// for zeros that are named like raw video.
constexpr rlim_t probeTime = 30;

// The usual size for the main thread. RLIMIT_DATA does not count a stack.
constexpr rlim_t largestStack = rlim_t(8) << 20; // bytes

/// A report needs much less than the machine's memory. Encoding the largest pictures on many processors can
/// exceed it and use swap.
rlim_t mostMemory(bool isProbe)
{
    constexpr rlim_t gigabyte = rlim_t(1) << 30;
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0)
        return RLIM_INFINITY;
    const rlim_t memory = static_cast<rlim_t>(pages) * static_cast<rlim_t>(pageSize);
    return isProbe ? std::max(8 * gigabyte, memory) : std::max(32 * gigabyte, 4 * memory);
}

/// Never raises a limit.
bool limit(__rlimit_resource resource, rlim_t most)
{
    rlimit now = {};
    if (::getrlimit(resource, &now) != 0)
        return false;
    const rlimit lowered = {std::min(now.rlim_cur, most), std::min(now.rlim_max, most)};
    return ::setrlimit(resource, &lowered) == 0;
}

/// RLIMIT_DATA counts writable mappings only. A limit of the address space would count the memory that every
/// thread reserves and does not use.
bool setLimits(bool isProbe)
{
    const bool hasNoCore = limit(RLIMIT_CORE, 0);
    const bool hasMemory = limit(RLIMIT_DATA, mostMemory(isProbe));
    const bool hasStack = limit(RLIMIT_STACK, largestStack);
    return hasNoCore && hasMemory && hasStack && (!isProbe || limit(RLIMIT_CPU, probeTime));
}

} // namespace

Confinement confine(const AccessRights& rights)
{
    Confinement confinement;
    confinement.noNewPrivileges = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
    confinement.fileRules = restrictFiles(rights.program, rights.readable, rights.writable);
    confinement.callFilter = refuseCalls();
    confinement.limits = setLimits(rights.isProbe); // last, because the limits also apply to the steps above
    return confinement;
}

std::string describeConfinement()
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        return {};
    const pid_t child = ::fork();
    if (child == 0) {
        const Confinement given = confine({});
        [[maybe_unused]] const auto written = ::write(ends[1], &given, sizeof given);
        ::_exit(0);
    }
    ::close(ends[1]);
    Confinement given;
    [[maybe_unused]] const auto count = ::read(ends[0], &given, sizeof given);
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    const auto answer = [](bool yes) { return yes ? "yes\n" : "no\n"; };
    return std::string("no new privileges: ") + answer(given.noNewPrivileges)
        + "limits: " + answer(given.limits) + "file rules: "
        + (given.fileRules > 0 ? "version " + std::to_string(given.fileRules) + "\n" : "no\n")
        + "call filter: " + answer(given.callFilter);
}
