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

// In seconds of processor time. A report on the longest film takes few of them, one on zeros that pretend to
// be raw video would take a minute for every 4 GB.
constexpr rlim_t probeTime = 30;

// Usual for a program's first thread. A stack does not count as memory that is written and mapped.
constexpr rlim_t largestStack = rlim_t(8) << 20; // bytes

/// A real report fits the machine's memory by far. What encodes the largest pictures on many processors may
/// need more than there is, and swap; what needs several times as much is up to no good.
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

/// A limit that is lower already stays.
bool limit(__rlimit_resource resource, rlim_t most)
{
    rlimit now = {};
    if (::getrlimit(resource, &now) != 0)
        return false;
    const rlimit lowered = {std::min(now.rlim_cur, most), std::min(now.rlim_max, most)};
    return ::setrlimit(resource, &lowered) == 0;
}

/// What is written and mapped counts, not what is only reserved: every thread reserves a lot that it never
/// uses.
bool setLimits(bool isProbe)
{
    const bool hasNoCore = limit(RLIMIT_CORE, 0);
    const bool hasMemory = limit(RLIMIT_DATA, mostMemory(isProbe));
    const bool hasStack = limit(RLIMIT_STACK, largestStack);
    return hasNoCore && hasMemory && hasStack && (!isProbe || limit(RLIMIT_CPU, probeTime));
}

} // namespace

Confinement confine(const Reach& reach)
{
    Confinement confinement;
    confinement.noNewPrivileges = ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
    confinement.fileRules = restrictFiles(reach.program, reach.readable, reach.writable);
    confinement.callFilter = refuseCalls();
    confinement.limits = setLimits(reach.isProbe); // last, since they hold for this process's own work too
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
