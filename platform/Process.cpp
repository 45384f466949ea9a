// SPDX-License-Identifier: MIT
#include "platform/Process.h"

#include "platform/FileHandle.h"

#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwell
{

namespace
{

/// Owns what posix_spawn is told about descriptors, the process group and signals.
class SpawnPlan
{
public:
    SpawnPlan()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        setSignalMask(noSignals());
    }
    ~SpawnPlan()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    void giveStream(const Pipe& pipe, int stream)
    {
        posix_spawn_file_actions_adddup2(&actions, pipe.writingDescriptor(), stream);
    }

    void leaveGroup()
    {
        posix_spawnattr_setpgroup(&attributes, 0);
        m_flags |= POSIX_SPAWN_SETPGROUP;
        posix_spawnattr_setflags(&attributes, m_flags);
    }

    void holdTermination()
    {
        sigset_t signals = noSignals();
        sigaddset(&signals, SIGTERM);
        setSignalMask(signals);
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    static sigset_t noSignals()
    {
        sigset_t none;
        sigemptyset(&none);
        return none;
    }

    // A thread of the application may block signals; the child must not inherit that, SIGTERM above all.
    void setSignalMask(const sigset_t& signals)
    {
        posix_spawnattr_setsigmask(&attributes, &signals);
        m_flags |= POSIX_SPAWN_SETSIGMASK;
        posix_spawnattr_setflags(&attributes, m_flags);
    }

    short m_flags = 0;
};

std::vector<char*> argumentPointers(std::string& executable, std::vector<std::string>& arguments)
{
    std::vector<char*> pointers = {executable.data()};
    for (auto& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return pointers;
}

bool lacksPipe(const std::shared_ptr<Pipe>& pipe)
{
    return pipe && pipe->writingDescriptor() < 0;
}

} // namespace

std::error_code Process::launch()
{
    const std::error_code error = spawn();
    for (const auto& pipe : {m_standardOutput, m_standardError}) {
        if (pipe)
            pipe->closeWriting();
    }
    return error;
}

std::error_code Process::spawn()
{
    if (lacksPipe(m_standardOutput) || lacksPipe(m_standardError))
        return std::make_error_code(std::errc::too_many_files_open);
    SpawnPlan plan;
    if (m_standardOutput)
        plan.giveStream(*m_standardOutput, STDOUT_FILENO);
    if (m_standardError)
        plan.giveStream(*m_standardError, STDERR_FILENO);
    if (m_group == Group::Own)
        plan.leaveGroup();
    if (m_termination == Termination::WhenReady)
        plan.holdTermination();
    const auto pointers = argumentPointers(m_executable, m_arguments);
    const std::lock_guard lock(m_mutex);
    const int failure = ::posix_spawn(
        &m_child, m_executable.c_str(), &plan.actions, &plan.attributes, pointers.data(), environ);
    if (failure != 0)
        m_child = 0;
    return {failure, std::generic_category()};
}

void Process::waitUntilExit()
{
    pid_t child = 0;
    {
        const std::lock_guard lock(m_mutex);
        child = m_child;
    }
    if (child == 0)
        return;
    // The exit is awaited first and the child reaped afterwards under the lock: until it is reaped its number
    // cannot belong to anyone else, and so terminate never hits a stranger.
    siginfo_t exit = {};
    while (::waitid(P_PID, static_cast<id_t>(child), &exit, WEXITED | WNOWAIT) != 0 && errno == EINTR) { }
    const std::lock_guard lock(m_mutex);
    while (m_child != 0 && ::waitpid(child, nullptr, 0) < 0 && errno == EINTR) { }
    m_child = 0;
}

void Process::terminate()
{
    const std::lock_guard lock(m_mutex);
    if (m_child != 0)
        ::kill(m_child, SIGTERM);
}

} // namespace tarnwell
