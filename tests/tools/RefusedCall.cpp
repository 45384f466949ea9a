// SPDX-License-Identifier: MIT
#include "tests/tools/RefusedCall.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

struct Rule {
    std::uint32_t number; // of the call
    std::uint32_t argument; // index of the compared argument, from 0
    int comparison; // BPF_JSET: any of these bits; BPF_JEQ: equal; BPF_JGE: at least
    std::uint32_t value;
    std::uint32_t error;
};

std::vector<Rule> rulesFor(RefusedCall call)
{
    constexpr std::uint32_t namelessFlag = O_TMPFILE & ~O_DIRECTORY;
    constexpr std::uint32_t createRulesetCall = 444;
    switch (call) {
    case RefusedCall::OpenNameless:
        return {{SYS_openat, 2, BPF_JSET, namelessFlag, EOPNOTSUPP}};
    case RefusedCall::MakeFiles:
        return {{SYS_openat, 2, BPF_JSET, namelessFlag | O_CREAT, ENOSPC}};
    case RefusedCall::RenameToFreeName:
        return {{SYS_renameat2, 4, BPF_JSET, 1, EINVAL}}; // RENAME_NOREPLACE
    case RefusedCall::Link:
        return {{SYS_linkat, 0, BPF_JGE, 0, EPERM}};
    case RefusedCall::RemoveNames:
        return {{SYS_renameat2, 0, BPF_JGE, 0, EPERM}, {SYS_renameat, 0, BPF_JGE, 0, EPERM},
            {SYS_unlinkat, 0, BPF_JGE, 0, EPERM}};
    case RefusedCall::CopyFileRange:
        return {{SYS_copy_file_range, 0, BPF_JGE, 0, ENOSYS}};
    case RefusedCall::ShareBlocks:
        return {{SYS_ioctl, 1, BPF_JEQ, FICLONE, EOPNOTSUPP}};
    case RefusedCall::ExclusiveLock:
        return {{SYS_flock, 1, BPF_JSET, LOCK_EX, EBADF}};
    case RefusedCall::FileRules:
        return {{createRulesetCall, 0, BPF_JGE, 0, ENOSYS}};
    case RefusedCall::CallFilters:
        return {{SYS_prctl, 0, BPF_JEQ, PR_SET_SECCOMP, EINVAL}, {SYS_seccomp, 0, BPF_JGE, 0, ENOSYS}};
    }
    return {};
}

bool refuse(const Rule& rule)
{
    const auto code = [](int value) { return static_cast<std::uint16_t>(value); };
    const auto argument = static_cast<std::uint32_t>(offsetof(seccomp_data, args) + 8 * rule.argument);
    std::vector<sock_filter> steps = {
        {code(BPF_LD | BPF_W | BPF_ABS), 0, 0, offsetof(seccomp_data, nr)},
        {code(BPF_JMP | BPF_JEQ | BPF_K), 0, 3, rule.number},
        {code(BPF_LD | BPF_W | BPF_ABS), 0, 0, argument},
        {code(BPF_JMP | rule.comparison | BPF_K), 0, 1, rule.value},
        {code(BPF_RET | BPF_K), 0, 0, SECCOMP_RET_ERRNO | rule.error},
        {code(BPF_RET | BPF_K), 0, 0, SECCOMP_RET_ALLOW},
    };
    const sock_fprog program = {static_cast<unsigned short>(steps.size()), steps.data()};
    // Used by the call that is refused last.
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
}

} // namespace

bool refuse(RefusedCall call)
{
    for (const auto& rule : rulesFor(call)) {
        if (!refuse(rule))
            return false;
    }
    return true;
}

bool holdsInChild(const std::function<bool()>& action)
{
    constexpr int yes = 42;
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(action() ? yes : 0);
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == yes;
}

bool holdsWithout(RefusedCall call, const std::function<bool()>& action)
{
    return holdsInChild([&] { return refuse(call) && action(); });
}

} // namespace tarnwell::test
