// SPDX-License-Identifier: MIT
// A fake of ffmpeg or ffprobe that a hostile file has taken over. Each line of argv[0] + ".script" is the
// name of an attack and its argument. Prints the result of each attack on standard error: "NAME: done" or
// "NAME: " and the error. After a successful "become", the new program prints instead.
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <map>
#include <netinet/in.h>
#include <string>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace
{

using Attack = std::function<bool(const std::string&)>;

bool canOpen(const std::string& path, int flags)
{
    const int file = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
    if (file < 0)
        return false;
    ::close(file);
    return true;
}

bool canConnect(const std::string& port)
{
    const int connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connection < 0)
        return false;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return ::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool canForkWithoutEnd(const std::string& count)
{
    for (int left = std::stoi(count); left > 0; --left) {
        const pid_t child = ::fork();
        if (child < 0)
            return false;
        if (child == 0)
            ::_exit(0);
        ::waitpid(child, nullptr, 0);
    }
    return true;
}

/// The kernel detaches the traced process when this program ends.
bool canTrace(pid_t process)
{
    return ::ptrace(PTRACE_SEIZE, process, nullptr, nullptr) == 0;
}

bool executeShell(const std::string& command)
{
    ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    return false;
}

bool canMap(const std::string& gigabytes)
{
    const std::size_t size = std::stoull(gigabytes) << 30U;
    return ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)
        != MAP_FAILED;
}

bool canMapShared(const std::string& gigabytes)
{
    const std::size_t size = std::stoull(gigabytes) << 30U;
    return ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)
        != MAP_FAILED;
}

/// F_SETOWN on a pipe, by which the kernel could send signals to the parent.
bool canArmFile(const std::string& /*none*/)
{
    int ends[2] = {-1, -1};
    return ::pipe(ends) == 0 && ::fcntl(ends[0], F_SETOWN, ::getppid()) == 0;
}

bool canSlowDownParent(const std::string& /*none*/)
{
    return ::setpriority(PRIO_PROCESS, static_cast<id_t>(::getppid()), ::getpriority(PRIO_PROCESS, 0)) == 0;
}

bool canStartThread()
{
    std::thread([] {}).join();
    return true;
}

bool mayLeaveCore()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_CORE, &limit);
    errno = EPERM;
    return limit.rlim_max != 0;
}

bool mayTakeHours()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_CPU, &limit);
    errno = EPERM;
    return limit.rlim_max > 3600;
}

/// Even a change to the same user asks for the right to do it.
bool canSetUsers()
{
    return ::setresuid(static_cast<uid_t>(-1), static_cast<uid_t>(-1), static_cast<uid_t>(-1)) == 0;
}

bool canMapGrowing()
{
    constexpr std::size_t size = 1 << 20;
    return ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_GROWSDOWN, -1, 0)
        != MAP_FAILED;
}

bool mayGrowStack()
{
    constexpr rlim_t usual = 8 << 20;
    rlimit limit = {};
    errno = EPERM;
    return ::getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_max > usual;
}

bool canListAttributesOfOpenFile(const std::string& path)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    return file >= 0 && ::flistxattr(file, nullptr, 0) >= 0;
}

bool canReadAttributeOfOpenFile(const std::string& path)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    return file >= 0
        && (::fgetxattr(file, "user.none", nullptr, 0) >= 0 || errno == ENODATA || errno == ENOTSUP);
}

bool mayGainPrivileges()
{
    errno = EPERM;
    return ::prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) == 0;
}

const std::map<std::string, Attack> attacks = {
    {"read", [](const std::string& path) { return canOpen(path, O_RDONLY); }},
    {"list", [](const std::string& path) { return canOpen(path, O_RDONLY | O_DIRECTORY); }},
    {"create", [](const std::string& path) { return canOpen(path, O_WRONLY | O_CREAT | O_EXCL); }},
    {"write", [](const std::string& path) { return canOpen(path, O_WRONLY); }},
    {"empty", [](const std::string& path) { return canOpen(path, O_RDONLY | O_TRUNC); }},
    {"truncate", [](const std::string& path) { return ::truncate(path.c_str(), 0) == 0; }},
    {"delete", [](const std::string& path) { return ::unlink(path.c_str()) == 0; }},
    {"rename", [](const std::string& path) { return ::rename(path.c_str(), (path + ".gone").c_str()) == 0; }},
    {"link", [](const std::string& path) { return ::link(path.c_str(), (path + ".link").c_str()) == 0; }},
    {"expose", [](const std::string& path) { return ::chmod(path.c_str(), 0777) == 0; }},
    {"date", [](const std::string& path) { return ::utimensat(AT_FDCWD, path.c_str(), nullptr, 0) == 0; }},
    {"connect", canConnect},
    {"listen", [](const std::string&) { return ::socket(AF_INET6, SOCK_DGRAM, 0) >= 0; }},
    {"talk", [](const std::string&) { return ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }},
    {"trace", [](const std::string&) { return canTrace(::getppid()); }},
    {"signal", [](const std::string&) { return ::kill(::getppid(), SIGCONT) == 0; }},
    {"fork", canForkWithoutEnd},
    {"outlive", [](const std::string&) { return ::prctl(PR_SET_PDEATHSIG, 0, 0, 0, 0) == 0; }},
    {"become", executeShell},
    {"map", canMap},
    {"share", canMapShared},
    {"arm", canArmFile},
    {"slow", canSlowDownParent},
    {"attributes", [](const std::string& path) { return ::listxattr(path.c_str(), nullptr, 0) >= 0; }},
    {"list-open", canListAttributesOfOpenFile},
    {"read-open", canReadAttributeOfOpenFile},
    {"users", [](const std::string&) { return canSetUsers(); }},
    {"grow", [](const std::string&) { return canMapGrowing(); }},
    {"stack", [](const std::string&) { return mayGrowStack(); }},
    {"thread", [](const std::string&) { return canStartThread(); }},
    {"core", [](const std::string&) { return mayLeaveCore(); }},
    {"hours", [](const std::string&) { return mayTakeHours(); }},
    {"privileges", [](const std::string&) { return mayGainPrivileges(); }},
};

void printLine(const std::string& line)
{
    [[maybe_unused]] const auto count = ::write(STDERR_FILENO, (line + "\n").data(), line.size() + 1);
}

} // namespace

int main(int, char* argv[])
{
    const std::string self = argv[0];
    std::ifstream script(self + ".script");
    if (!script) {
        printLine("hostileTool: no script");
        return 2;
    }
    for (std::string line; std::getline(script, line);) {
        const auto blank = line.find(' ');
        const std::string name = line.substr(0, blank);
        const std::string argument = blank == std::string::npos ? "" : line.substr(blank + 1);
        const bool isDone = attacks.at(name)(argument);
        printLine(name + ": " + (isDone ? "done" : std::strerror(errno)));
    }
    return 0;
}
