// SPDX-License-Identifier: MIT
#include "tests/tools/RefusedCall.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
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
    std::uint32_t flagsAt; // which argument, counted from 0, holds the flags
    std::uint32_t flag;
    std::uint32_t error;
};

Rule ruleFor(RefusedCall call)
{
    constexpr std::uint32_t namelessFlag = O_TMPFILE & ~O_DIRECTORY;
    if (call == RefusedCall::OpenNameless)
        return {SYS_openat, 2, namelessFlag, EOPNOTSUPP};
    return {SYS_renameat2, 4, 1, EINVAL}; // RENAME_NOREPLACE
}

bool refuse(const Rule& rule)
{
    const auto code = [](int value) { return static_cast<std::uint16_t>(value); };
    const auto flags = static_cast<std::uint32_t>(offsetof(seccomp_data, args) + 8 * rule.flagsAt);
    std::vector<sock_filter> steps = {
        {code(BPF_LD | BPF_W | BPF_ABS), 0, 0, offsetof(seccomp_data, nr)},
        {code(BPF_JMP | BPF_JEQ | BPF_K), 0, 3, rule.number},
        {code(BPF_LD | BPF_W | BPF_ABS), 0, 0, flags},
        {code(BPF_JMP | BPF_JSET | BPF_K), 0, 1, rule.flag},
        {code(BPF_RET | BPF_K), 0, 0, SECCOMP_RET_ERRNO | rule.error},
        {code(BPF_RET | BPF_K), 0, 0, SECCOMP_RET_ALLOW},
    };
    const sock_fprog program = {static_cast<unsigned short>(steps.size()), steps.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace

bool holdsWithout(RefusedCall call, const std::function<bool()>& action)
{
    constexpr int yes = 42;
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(refuse(ruleFor(call)) && action() ? yes : 0);
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == yes;
}

} // namespace tarnwell::test
