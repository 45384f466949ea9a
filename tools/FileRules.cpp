// SPDX-License-Identifier: MIT
#include "tools/FileRules.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

// linux/landlock.h can be missing or older than the running kernel. These numbers are the same on nearly all
// architectures.
#ifdef SYS_landlock_create_ruleset
constexpr long createRulesetCall = SYS_landlock_create_ruleset;
constexpr long addRuleCall = SYS_landlock_add_rule;
constexpr long restrictSelfCall = SYS_landlock_restrict_self;
#else
constexpr long createRulesetCall = 444;
constexpr long addRuleCall = 445;
constexpr long restrictSelfCall = 446;
#endif
constexpr unsigned int askForVersion = 1;
constexpr int pathRule = 1;

using Rights = std::uint64_t;

constexpr Rights execute = 1U << 0U;
constexpr Rights writeFile = 1U << 1U;
constexpr Rights readFile = 1U << 2U;
constexpr Rights readFolder = 1U << 3U;
constexpr Rights truncateFile = 1U << 14U;

/// All file access rights of this version of Landlock (1, 2, …).
Rights allFileRights(int version)
{
    constexpr unsigned int countOfVersion[newestFileRules + 1] = {0, 13, 14, 15, 15, 16, 16};
    return (Rights(1) << countOfVersion[version]) - 1;
}

struct Ruleset {
    Rights files = 0;
    Rights network = 0; // bind and connect over TCP
    Rights scopes = 0; // abstract sockets and signals
};

struct [[gnu::packed]] PathRule {
    Rights rights = 0;
    int place = -1;
};

Ruleset rulesetFor(int version)
{
    constexpr int firstWithNetwork = 4;
    constexpr int firstWithScopes = 6;
    constexpr Rights both = 3;
    Ruleset ruleset;
    ruleset.files = allFileRights(version);
    ruleset.network = version >= firstWithNetwork ? both : 0;
    ruleset.scopes = version >= firstWithScopes ? both : 0;
    return ruleset;
}

class Rules
{
public:
    explicit Rules(int version)
        : m_known(allFileRights(version))
    {
        const Ruleset ruleset = rulesetFor(version);
        m_descriptor = static_cast<int>(::syscall(createRulesetCall, &ruleset, sizeof ruleset, 0));
    }
    ~Rules()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Rules(const Rules&) = delete;
    Rules& operator=(const Rules&) = delete;

    /// Ignores a path that does not exist.
    void allow(const std::string& path, Rights rights) const
    {
        const int place = ::open(path.c_str(), O_PATH | O_CLOEXEC);
        if (place < 0)
            return;
        allow(place, rights);
        ::close(place);
    }

    /// Ignores folders: a rule for a folder would cover all files in it.
    void allowFile(const std::string& path, Rights rights) const
    {
        const int place = ::open(path.c_str(), O_PATH | O_CLOEXEC);
        if (place < 0)
            return;
        struct stat status = {};
        if (::fstat(place, &status) == 0 && !S_ISDIR(status.st_mode))
            allow(place, rights);
        ::close(place);
    }

    void allow(int place, Rights rights) const
    {
        struct stat status = {};
        const bool isFolder = ::fstat(place, &status) == 0 && S_ISDIR(status.st_mode);
        PathRule rule;
        rule.rights = (isFolder ? rights : rights & ~readFolder) & m_known;
        rule.place = place;
        ::syscall(addRuleCall, m_descriptor, pathRule, &rule, 0);
    }

    bool enforce() const { return ::syscall(restrictSelfCall, m_descriptor, 0) == 0; }

private:
    Rights m_known;
    int m_descriptor = -1;
};

// Folders of libraries and the program loader on common distributions.
const char* const libraryFolders[] = {"/lib", "/lib32", "/lib64", "/usr/lib", "/usr/lib32", "/usr/lib64",
    "/usr/local/lib", "/nix/store", "/gnu/store"};

// Files that the loader and codec libraries read to find libraries and to count processors.
const char* const descriptions[] = {"/etc/ld.so.cache", "/etc/ld.so.preload", "/etc/gcrypt", "/dev/null",
    "/dev/random", "/dev/urandom", "/proc/filesystems", "/proc/cpuinfo", "/proc/meminfo", "/proc/stat",
    "/proc/sys/crypto", "/sys/devices/system",
    // Single files, because the folder also lists the machine's connections and mounts.
    "/proc/self/auxv", "/proc/self/cmdline", "/proc/self/maps", "/proc/self/status"};

std::string folderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}

std::string withoutLinks(const std::string& path)
{
    char* const resolved = ::realpath(path.c_str(), nullptr);
    const std::string result = resolved != nullptr ? resolved : path;
    std::free(resolved);
    return result;
}

/// The libraries of an FFmpeg outside the system are in its own folder or in the neighbouring lib folder.
void allowProgram(const Rules& rules, const std::string& program, bool isOwn)
{
    constexpr Rights library = execute | readFile | readFolder;
    const std::string file = withoutLinks(program);
    rules.allow(file, execute | readFile);
    rules.allow(folderOf(file) + "../lib", library);
    rules.allow(folderOf(file) + "../lib64", library);
    if (isOwn)
        rules.allow(folderOf(file), readFile | readFolder);
}

bool isBesideThisProgram(const std::string& program)
{
    return folderOf(withoutLinks(program)) == folderOf(withoutLinks("/proc/self/exe"));
}

} // namespace

int restrictFiles(const std::string& program, const std::string& readable, int writable, int newest)
{
    const int offered = static_cast<int>(::syscall(createRulesetCall, nullptr, 0, askForVersion));
    const int version = std::min({offered, newest, newestFileRules});
    if (version < 1)
        return 0;
    const Rules rules(version);
    for (const char* folder : libraryFolders)
        rules.allow(folder, execute | readFile | readFolder);
    for (const char* description : descriptions)
        rules.allow(description, readFile | readFolder);
    if (!program.empty())
        allowProgram(rules, program, isBesideThisProgram(program));
    if (!readable.empty())
        rules.allowFile(readable, readFile);
    if (writable >= 0)
        rules.allow(writable, readFile | writeFile | truncateFile);
    return rules.enforce() ? version : 0;
}
