// SPDX-License-Identifier: MIT
// The system calls of a hostile ffmpeg: first without confinement, then under the tools.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/Listener.h"
#include "tests/tools/RefusedCall.h"
#include "tools/CallFilter.h"
#include "tools/FileRules.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

struct Attack {
    std::string name;
    std::string target; // a path in the victim's folder; empty for none
    std::string argument;
};

const std::string denied = "Permission denied";
const std::string notPermitted = "Operation not permitted";

} // namespace

class ConfinementTest : public CreatorTest
{
protected:
    void SetUp() override
    {
        CreatorTest::SetUp();
        ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0); // for systems on which only a parent may trace
    }

    std::string victim() const { return m_home.path() + "diary"; }

    /// The outcome of the attack without confinement.
    std::string bare(const Attack& attack) { return outcome(attack, tools.ffmpeg(), {}); }
    std::string underCreator(const Attack& attack) { return outcome(attack, tools.creator(), transcode()); }
    std::string underSniffer(const Attack& attack)
    {
        return outcome(attack, tools.sniffer(), {"-v", "quiet", input()});
    }

    /// Expects the attack to succeed without confinement and to fail under both tools.
    void expectPrevented(const Attack& attack, const std::string& error)
    {
        SCOPED_TRACE(attack.name);
        EXPECT_EQ(bare(attack), "done");
        EXPECT_EQ(underCreator(attack), error);
        expectVictimUnharmed();
        EXPECT_EQ(underSniffer(attack), error);
        expectVictimUnharmed();
    }

    void expectVictimUnharmed() const
    {
        EXPECT_EQ(namesIn(m_home.path()), std::vector<std::string>({"diary"}));
        EXPECT_EQ(contentsOf(victim()), "dear diary");
        EXPECT_EQ(std::filesystem::status(victim()).permissions(), std::filesystem::perms(0600));
    }

    void layOutVictim() const
    {
        for (const auto& name : namesIn(m_home.path()))
            std::filesystem::remove(m_home.path() + name);
        writeFile(victim(), "dear diary");
        std::filesystem::permissions(victim(), std::filesystem::perms(0600));
    }

    std::string outcome(
        const Attack& attack, const std::string& program, const std::vector<std::string>& arguments)
    {
        layOutVictim();
        const std::string target = attack.target.empty() ? attack.argument : m_home.path() + attack.target;
        const std::string script = attack.name + " " + target + "\n";
        tools.setHostileFfmpeg(script);
        tools.setHostileFfprobe(script);
        ToolProcess process(program, arguments);
        process.wait();
        const auto said = process.said(attack.name + ": ");
        EXPECT_FALSE(said.empty()) << process.errorText();
        for (const std::string& line : said) // creator runs a failing ffmpeg more than once
            EXPECT_EQ(line, said.front());
        return said.empty() ? "" : said.front();
    }

private:
    TemporaryDirectory m_home;
};

TEST_F(ConfinementTest, otherFilesCannotBeRead)
{
    expectPrevented({"read", "diary", {}}, denied);
    expectPrevented({"list", ".", {}}, denied);
    expectPrevented({"read", {}, "/etc/passwd"}, denied);
    expectPrevented({"attributes", "diary", {}}, notPermitted);
}

TEST_F(ConfinementTest, theMachinesConnectionsAndMountsCannotBeRead)
{
    for (const char* path : {"/proc/self/net/dev", "/proc/self/mountinfo", "/proc/self/mounts",
             "/proc/self/environ", "/proc/thread-self/net/dev"})
        expectPrevented({"read", {}, path}, denied);
    expectPrevented({"list", {}, "/proc/self/net"}, denied);
}

TEST_F(ConfinementTest, aFolderAsInputOpensNoneOfItsFiles)
{
    layOutVictim();
    EXPECT_TRUE(holdsInChild([&] {
        const auto canOpen = [](const std::string& path) { return ::open(path.c_str(), O_RDONLY) >= 0; };
        const std::string folder = victim().substr(0, victim().rfind('/'));
        return canOpen(victim()) && restrictFiles("/bin/true", folder, -1) > 0 && !canOpen(victim())
            && errno == EACCES && !canOpen(folder) && errno == EACCES;
    }));
}

TEST_F(ConfinementTest, noFileCanBeMadeChangedOrDeleted)
{
    expectPrevented({"create", "note", {}}, denied);
    expectPrevented({"write", "diary", {}}, denied);
    expectPrevented({"truncate", "diary", {}}, notPermitted);
    expectPrevented({"empty", "diary", {}}, notPermitted);
    expectPrevented({"delete", "diary", {}}, notPermitted);
    expectPrevented({"rename", "diary", {}}, notPermitted);
    expectPrevented({"link", "diary", {}}, notPermitted);
    expectPrevented({"expose", "diary", {}}, notPermitted);
    expectPrevented({"date", "diary", {}}, notPermitted);
}

TEST_F(ConfinementTest, nothingCanBeWrittenBesideTheOutput)
{
    const Attack attack = {"create", {}, tools.at("beside")};
    EXPECT_EQ(bare(attack), "done");
    EXPECT_EQ(otherNames(), std::vector<std::string>({"beside"}));
    std::filesystem::remove(tools.at("beside"));
    EXPECT_EQ(underCreator(attack), denied);
    EXPECT_EQ(underSniffer(attack), denied);
    EXPECT_EQ(otherNames(), std::vector<std::string>());
}

TEST_F(ConfinementTest, theInputCanBeReadAndNothingElse)
{
    EXPECT_EQ(underCreator({"read", {}, input()}), "done");
    EXPECT_EQ(underSniffer({"read", {}, input()}), "done");
    expectPrevented({"write", {}, input()}, denied);
    expectPrevented({"date", {}, tools.addData("other", "bytes")}, notPermitted);
    for (const char* name :
        {"truncate", "empty", "rename", "delete", "date", "attributes", "list-open", "read-open"}) {
        EXPECT_EQ(underCreator({name, {}, input()}), notPermitted) << name;
        EXPECT_EQ(underSniffer({name, {}, input()}), notPermitted) << name;
    }
}

TEST_F(ConfinementTest, noConnectionCanBeMade)
{
    const Listener listener;
    const Attack attack = {"connect", {}, listener.port()};
    EXPECT_EQ(bare(attack), "done");
    EXPECT_TRUE(listener.wasCalled());
    EXPECT_EQ(underCreator(attack), notPermitted);
    EXPECT_EQ(underSniffer(attack), notPermitted);
    EXPECT_FALSE(listener.wasCalled());
    expectPrevented({"listen", {}, {}}, notPermitted);
    expectPrevented({"talk", {}, {}}, notPermitted);
}

TEST_F(ConfinementTest, otherProcessesCannotBeReached)
{
    expectPrevented({"trace", {}, {}}, notPermitted);
    expectPrevented({"signal", {}, {}}, notPermitted);
    expectPrevented({"outlive", {}, {}}, notPermitted);
    expectPrevented({"arm", {}, {}}, notPermitted);
    expectPrevented({"slow", {}, {}}, notPermitted);
    expectPrevented({"users", {}, {}}, notPermitted); // a change of user clears the parent-death signal
}

TEST_F(ConfinementTest, noProcessesCanBeStarted)
{
    expectPrevented({"fork", {}, "50"}, notPermitted);
    expectPrevented({"become", {}, "echo become: done >&2"}, denied);
}

TEST_F(ConfinementTest, memoryIsLimited)
{
    expectPrevented({"map", {}, "2000"}, "Cannot allocate memory");
    expectPrevented({"share", {}, "2"}, notPermitted);
    expectPrevented({"grow", {}, {}}, notPermitted);
    expectPrevented({"read", {}, "/dev/zero"}, denied); // a shared mapping of it allocates memory
    for (const auto& outcome : {underCreator({"stack", {}, {}}), underSniffer({"stack", {}, {}})})
        EXPECT_EQ(outcome, notPermitted);
}

TEST_F(ConfinementTest, privilegesAndCoreFilesAreRefused)
{
    expectPrevented({"privileges", {}, {}}, notPermitted);
    for (const auto& outcome : {underCreator({"core", {}, {}}), underSniffer({"core", {}, {}})})
        EXPECT_EQ(outcome, notPermitted);
}

TEST_F(ConfinementTest, theTimeOfAReportIsLimitedAndThatOfAnEncodingIsNot)
{
    EXPECT_EQ(underSniffer({"hours", {}, {}}), notPermitted);
    EXPECT_EQ(underCreator({"hours", {}, {}}), "done");
}

TEST_F(ConfinementTest, aDecoderHasWhatItNeeds)
{
    for (const Attack& need :
        std::vector<Attack>{{"thread", {}, {}}, {"map", {}, "1"}, {"read", {}, "/dev/urandom"},
            {"list", {}, "/usr/lib"}, {"read", {}, "/proc/self/status"}, {"read", {}, "/proc/self/maps"}}) {
        EXPECT_EQ(underCreator(need), "done") << need.name;
        EXPECT_EQ(underSniffer(need), "done") << need.name;
    }
}

TEST_F(ConfinementTest, aKernelWithoutTheRulesIsSupported)
{
    const std::vector<std::vector<RefusedCall>> kernels = {{RefusedCall::FileRules},
        {RefusedCall::CallFilters}, {RefusedCall::FileRules, RefusedCall::CallFilters}};
    setGoodFfmpeg();
    for (const auto& kernel : kernels) {
        std::filesystem::remove(output());
        EXPECT_EQ(run(transcode(), {.refused = kernel}), 0) << lastRun().errorText();
        EXPECT_EQ(contentsOf(output()), movie());
        ToolProcess sniffer(tools.sniffer(), {"-v", "quiet", input()}, {.refused = kernel});
        EXPECT_EQ(sniffer.wait(), 0);
        EXPECT_NE(sniffer.output(), "");
    }
}

TEST_F(ConfinementTest, theConfinementIsDescribed)
{
    EXPECT_EQ(run({"--confinement"}), 0);
    const std::string text = lastRun().output();
    EXPECT_TRUE(text.starts_with("no new privileges: yes\nlimits: yes\nfile rules: version ")) << text;
    EXPECT_TRUE(text.ends_with("\ncall filter: yes\n")) << text;
    EXPECT_EQ(run({"--confinement"}, {.refused = {RefusedCall::FileRules, RefusedCall::CallFilters}}), 0);
    EXPECT_EQ(lastRun().output(), "no new privileges: yes\nlimits: yes\nfile rules: no\ncall filter: no\n");
}

TEST_F(ConfinementTest, everyVersionOfTheKernelsFileRulesKeepsOthersFromBeingRead)
{
    layOutVictim();
    for (int version = 1; version <= 7; ++version) {
        SCOPED_TRACE(version);
        EXPECT_TRUE(holdsInChild([&] {
            const int held = restrictFiles("/bin/true", input(), -1, version);
            return held > 0 && held <= version && ::open(victim().c_str(), O_RDONLY) < 0 && errno == EACCES
                && ::open(input().c_str(), O_RDONLY) >= 0 && ::open(input().c_str(), O_WRONLY) < 0
                && ::open("/usr/lib", O_RDONLY | O_DIRECTORY) >= 0;
        }));
    }
}

TEST_F(ConfinementTest, filesCannotBeEmptiedWhereTheKernelsFileRulesAreTooOldToSeeIt)
{
    layOutVictim();
    for (const int mode : {O_RDONLY, O_ACCMODE}) {
        EXPECT_TRUE(holdsInChild([&] {
            return restrictFiles("/bin/true", {}, -1, 2) == 2 && refuseCalls()
                && ::open(input().c_str(), mode | O_TRUNC) < 0 && errno == EPERM
                && ::truncate(input().c_str(), 0) < 0 && errno == EPERM;
        }));
    }
}

struct KernelCall {
    const char* name;
    long number;
    long arguments[3];
    int error;
};

TEST_F(ConfinementTest, otherSystemCallsAreRefused)
{
    const std::vector<KernelCall> calls = {{"mount", SYS_mount, {0, 0, 0}, EPERM},
        {"umount2", SYS_umount2, {0, 0, 0}, EPERM}, {"unshare", SYS_unshare, {0, 0, 0}, EPERM},
        {"setns", SYS_setns, {-1, 0, 0}, EPERM}, {"keyctl", SYS_keyctl, {0, 0, 0}, EPERM},
        {"add_key", SYS_add_key, {0, 0, 0}, EPERM}, {"request_key", SYS_request_key, {0, 0, 0}, EPERM},
        {"bpf", SYS_bpf, {0, 0, 0}, EPERM}, {"userfaultfd", SYS_userfaultfd, {-1, 0, 0}, EPERM},
        {"io_uring_setup", SYS_io_uring_setup, {0, 0, 0}, EPERM},
        {"io_uring_enter", SYS_io_uring_enter, {-1, 0, 0}, EPERM},
        {"io_uring_register", SYS_io_uring_register, {-1, 0, 0}, EPERM},
        {"perf_event_open", SYS_perf_event_open, {0, 0, 0}, EPERM},
        {"process_vm_readv", SYS_process_vm_readv, {0, 0, 0}, EPERM},
        {"pidfd_open", SYS_pidfd_open, {-1, 0, 0}, EPERM}, {"move_mount", SYS_move_mount, {-1, 0, 0}, EPERM},
        {"open_tree", SYS_open_tree, {-1, 0, 0}, EPERM}, {"fsopen", SYS_fsopen, {0, 0, 0}, EPERM},
        {"shmget", SYS_shmget, {0, 0, 0}, EPERM}, {"fchmodat2", 452, {-1, 0, 0}, EPERM},
        {"setxattrat", 463, {-1, 0, 0}, EPERM}, {"file_setattr", 469, {-1, 0, 0}, EPERM},
        {"chown", SYS_fchownat, {-1, 0, 0}, EPERM}, {"setxattr", SYS_setxattr, {0, 0, 0}, EPERM},
        {"removexattr", SYS_removexattr, {0, 0, 0}, EPERM}, {"symlinkat", SYS_symlinkat, {0, -1, 0}, EPERM},
        {"mkdirat", SYS_mkdirat, {-1, 0, 0}, EPERM}, {"prlimit64", SYS_prlimit64, {1, 0, 0}, EPERM},
        {"a new namespace", SYS_clone, {0x10000000, 0, 0}, EPERM},
        {"personality", SYS_personality, {0xFFFFFFFF, 0, 0}, EPERM}, {"semget", SYS_semget, {0, 0, 0}, EPERM},
        {"msgget", SYS_msgget, {0, 0, 0}, EPERM}, {"mq_open", SYS_mq_open, {0, 0, 0}, EPERM},
        {"setuid", SYS_setuid, {0, 0, 0}, EPERM}, {"setgid", SYS_setgid, {0, 0, 0}, EPERM},
        {"setreuid", SYS_setreuid, {-1, -1, 0}, EPERM}, {"setregid", SYS_setregid, {-1, -1, 0}, EPERM},
        {"setresgid", SYS_setresgid, {-1, -1, -1}, EPERM}, {"setfsuid", SYS_setfsuid, {-1, 0, 0}, EPERM},
        {"setfsgid", SYS_setfsgid, {-1, 0, 0}, EPERM}, {"setgroups", SYS_setgroups, {-1, 0, 0}, EPERM},
        {"capset", SYS_capset, {0, 0, 0}, EPERM}, {"statmount", 457, {0, 0, 0}, EPERM},
        {"listmount", 458, {0, 0, 0}, EPERM}, {"fsetxattr", SYS_fsetxattr, {-1, 0, 0}, EPERM},
        {"fremovexattr", SYS_fremovexattr, {-1, 0, 0}, EPERM},
        {"memfd_create", SYS_memfd_create, {0, 0, 0}, EPERM},
        {"sched_setaffinity", SYS_sched_setaffinity, {0, 0, 0}, EPERM},
        {"inotify_init1", SYS_inotify_init1, {-1, 0, 0}, EPERM},
        {"a file that signals", SYS_fcntl, {0, F_SETOWN, 1}, EPERM},
        {"typing into a terminal", SYS_ioctl, {0, TIOCSTI, 0}, EPERM}, {"clone3", 435, {0, 0, 0}, ENOSYS},
        {"openat2", SYS_openat2, {-1, 0, 0}, ENOSYS}};
    for (const auto& call : calls) {
        EXPECT_TRUE(holdsInChild([&] {
            return refuseCalls()
                && ::syscall(call.number, call.arguments[0], call.arguments[1], call.arguments[2], 0, 0) < 0
                && errno == call.error;
        })) << call.name;
    }
}

TEST_F(ConfinementTest, itMaySendASignalToItself)
{
    EXPECT_TRUE(holdsInChild([] {
        return refuseCalls() && ::syscall(SYS_tgkill, ::getpid(), ::gettid(), 0) == 0
            && ::syscall(SYS_tgkill, ::getppid(), ::getppid(), 0) < 0 && errno == EPERM;
    }));
}

} // namespace tarnwell::test
