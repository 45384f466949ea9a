// SPDX-License-Identifier: MIT
#include "tools/CallFilter.h"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <linux/sched.h>
#include <memory>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace
{

struct Release {
    void operator()(void* filter) const { ::seccomp_release(filter); }
};

struct Call {
    const char* name;
    int number = __NR_SCMP_ERROR; // for calls that libseccomp may not know; the same on all architectures
};

constexpr Call refused[] = {
    // Network and local sockets.
    {"socket"}, {"socketpair"}, {"socketcall"}, {"connect"}, {"bind"}, {"listen"}, {"accept"}, {"accept4"},
    // New processes. refuseProcesses allows threads.
    {"fork"}, {"vfork"}, {"execveat"},
    // Access to other processes. refuseProcesses allows signals to the process itself.
    {"ptrace"}, {"process_vm_readv"}, {"process_vm_writev"}, {"process_madvise", 440},
    {"process_mrelease", 448}, {"pidfd_open", 434}, {"pidfd_getfd", 438}, {"pidfd_send_signal", 424},
    {"kcmp"}, {"kill"}, {"tkill"}, {"setpriority"}, {"sched_setaffinity"}, {"sched_setscheduler"},
    {"sched_setparam"}, {"sched_setattr"}, {"ioprio_set"}, {"rt_sigqueueinfo"}, {"rt_tgsigqueueinfo"},
    {"migrate_pages"}, {"move_pages"},
    // Users and privileges. A change of user also clears the parent-death signal.
    {"setuid"}, {"setuid32"}, {"setgid"}, {"setgid32"}, {"setreuid"}, {"setreuid32"}, {"setregid"},
    {"setregid32"}, {"setresuid"}, {"setresuid32"}, {"setresgid"}, {"setresgid32"}, {"setfsuid"},
    {"setfsuid32"}, {"setfsgid"}, {"setfsgid32"}, {"setgroups"}, {"setgroups32"}, {"capset"},
    // Mounts and namespaces.
    {"mount"}, {"umount"}, {"umount2"}, {"pivot_root"}, {"chroot"}, {"open_tree", 428}, {"move_mount", 429},
    {"fsopen", 430}, {"fsconfig", 431}, {"fsmount", 432}, {"fspick", 433}, {"mount_setattr", 442},
    {"open_tree_attr", 467}, {"unshare"}, {"setns"}, {"quotactl"}, {"quotactl_fd", 443}, {"swapon"},
    {"swapoff"}, {"statmount", 457}, {"listmount", 458},
    // Access to files by other means than a path.
    {"name_to_handle_at"}, {"open_by_handle_at"}, {"fanotify_init"},
    // Changes of names and attributes of files that Landlock does not cover, or not in its first versions.
    {"truncate"}, {"truncate64"}, {"link"}, {"linkat"}, {"symlink"}, {"symlinkat"}, {"rename"}, {"renameat"},
    {"renameat2"}, {"unlink"}, {"unlinkat"}, {"rmdir"}, {"mkdir"}, {"mkdirat"}, {"mknod"}, {"mknodat"},
    {"chmod"}, {"fchmod"}, {"fchmodat"}, {"fchmodat2", 452}, {"chown"}, {"chown32"}, {"fchown"}, {"fchown32"},
    {"lchown"}, {"lchown32"}, {"fchownat"}, {"setxattr"}, {"lsetxattr"}, {"fsetxattr"}, {"setxattrat", 463},
    {"removexattr"}, {"lremovexattr"}, {"fremovexattr"}, {"removexattrat", 466}, {"file_setattr", 469},
    {"utime"}, {"utimes"}, {"futimesat"}, {"utimensat"}, {"utimensat_time64"}, {"getxattr"}, {"lgetxattr"},
    {"fgetxattr"}, {"getxattrat", 464}, {"listxattr"}, {"llistxattr"}, {"flistxattr"}, {"listxattrat", 465},
    {"inotify_init"}, {"inotify_init1"}, {"inotify_add_watch"},
    // Devices, terminals and file system attributes.
    {"ioctl"},
    // Keys, shared memory and message queues.
    {"add_key"}, {"request_key"}, {"keyctl"}, {"shmget"}, {"shmat"}, {"shmctl"}, {"semget"}, {"semop"},
    {"semctl"}, {"msgget"}, {"msgsnd"}, {"msgrcv"}, {"msgctl"}, {"ipc"}, {"mq_open"}, {"mq_unlink"},
    {"memfd_create"},
    // Kernel internals.
    {"bpf"}, {"userfaultfd"}, {"perf_event_open"}, {"io_uring_setup", 425}, {"io_uring_enter", 426},
    {"io_uring_register", 427}, {"init_module"}, {"finit_module"}, {"delete_module"}, {"kexec_load"},
    {"kexec_file_load"}, {"reboot"}, {"acct"}, {"syslog"}, {"iopl"}, {"ioperm"}, {"modify_ldt"},
    {"personality"}, {"settimeofday"}, {"clock_settime"}, {"clock_settime64"}, {"adjtimex"},
    {"clock_adjtime"}, {"clock_adjtime64"}, {"sethostname"}, {"setdomainname"}, {"vhangup"}};

// Their arguments are in memory, which the filter cannot read. Programs fall back on the older calls.
constexpr Call unknown[] = {{"clone3", 435}, {"openat2", 437}};

class CallFilter
{
public:
    CallFilter()
        : m_filter(::seccomp_init(SCMP_ACT_ALLOW))
    {
    }

    void refuse(const Call& call, int error = EPERM)
    {
        if (m_filter)
            ::seccomp_rule_add(
                m_filter.get(), SCMP_ACT_ERRNO(static_cast<unsigned>(error)), numberOf(call), 0);
    }

    void refuseWhere(const Call& call, const scmp_arg_cmp& argument)
    {
        if (m_filter)
            ::seccomp_rule_add_array(m_filter.get(), SCMP_ACT_ERRNO(EPERM), numberOf(call), 1, &argument);
    }

    bool load()
    {
        if (!m_filter)
            return false;
        // Kernels before 5.16 otherwise enable a slow mitigation (SSBD) for every filtered program.
        ::seccomp_attr_set(m_filter.get(), SCMP_FLTATR_CTL_SSB, 1);
        ::seccomp_attr_set(
            m_filter.get(), SCMP_FLTATR_CTL_OPTIMIZE, 2); // binary search instead of linear comparison
        return ::seccomp_load(m_filter.get()) == 0;
    }

private:
    static int numberOf(const Call& call)
    {
        const int number = ::seccomp_syscall_resolve_name(call.name);
        return number != __NR_SCMP_ERROR ? number : call.number;
    }

    std::unique_ptr<void, Release> m_filter;
};

// The kernel ignores the upper 32 bits of an int argument.
constexpr scmp_datum_t wholeInteger = 0xFFFFFFFF;

scmp_arg_cmp hasBits(unsigned int argument, scmp_datum_t mask, scmp_datum_t bits)
{
    return {argument, SCMP_CMP_MASKED_EQ, mask, bits};
}

scmp_arg_cmp isOther(unsigned int argument, scmp_datum_t value)
{
    return {argument, SCMP_CMP_NE, value, 0};
}

/// Decoders need threads, but no processes.
void refuseProcesses(CallFilter& filter)
{
#ifdef __s390__
    constexpr unsigned int flags = 1;
#else
    constexpr unsigned int flags = 0;
#endif
    filter.refuseWhere({"clone"}, hasBits(flags, CLONE_THREAD, 0));
    for (const scmp_datum_t space : std::initializer_list<scmp_datum_t>{CLONE_NEWNS, CLONE_NEWCGROUP,
             CLONE_NEWUTS, CLONE_NEWIPC, CLONE_NEWUSER, CLONE_NEWPID, CLONE_NEWNET})
        filter.refuseWhere({"clone"}, hasBits(flags, space, space));
    filter.refuseWhere({"tgkill"}, isOther(0, static_cast<scmp_datum_t>(::getpid())));
    filter.refuseWhere({"prlimit64"}, isOther(0, 0));
    // The child must not disable its parent-death signal.
    filter.refuseWhere({"prctl"}, hasBits(0, wholeInteger, PR_SET_PDEATHSIG));
}

/// O_TRUNC without write access empties a file. Landlock before version 3 does not refuse it.
void refuseEmptying(CallFilter& filter)
{
    constexpr scmp_datum_t mask = 3 | O_TRUNC;
    // Access mode 3 permits neither reading nor writing.
    for (const scmp_datum_t mode : std::initializer_list<scmp_datum_t>{O_RDONLY, 3}) {
        filter.refuseWhere({"open"}, hasBits(1, mask, mode | O_TRUNC));
        filter.refuseWhere({"openat"}, hasBits(2, mask, mode | O_TRUNC));
    }
}

/// fcntl can make a file send signals to any process.
void refuseSignalsByFiles(CallFilter& filter)
{
    for (const char* call : {"fcntl", "fcntl64"}) {
        for (const scmp_datum_t command :
            std::initializer_list<scmp_datum_t>{F_SETOWN, F_SETSIG, F_SETOWN_EX})
            filter.refuseWhere({call}, hasBits(1, wholeInteger, command));
    }
}

/// RLIMIT_DATA does not count shared and growing mappings.
void refuseUncountedMemory(CallFilter& filter)
{
    constexpr scmp_datum_t shared = MAP_SHARED | MAP_ANONYMOUS;
    for (const char* call : {"mmap", "mmap2"}) {
        filter.refuseWhere({call}, hasBits(3, shared, shared));
        filter.refuseWhere({call}, hasBits(3, MAP_GROWSDOWN, MAP_GROWSDOWN));
    }
}

} // namespace

bool refuseCalls()
{
    CallFilter filter;
    for (const Call& call : refused)
        filter.refuse(call);
    for (const Call& call : unknown)
        filter.refuse(call, ENOSYS);
    refuseProcesses(filter);
    refuseEmptying(filter);
    refuseSignalsByFiles(filter);
    refuseUncountedMemory(filter);
    return filter.load();
}
