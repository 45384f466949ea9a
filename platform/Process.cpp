// SPDX-License-Identifier: MIT
#include "platform/Process.h"

#include "platform/FileHandle.h"

#include <cerrno>
#include <csignal>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwell
{

namespace
{

/// The file actions and attributes of one posix_spawn call.
class SpawnPlan
{
public:
    SpawnPlan()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        resetSignals();
    }
    ~SpawnPlan()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    void redirect(int stream, const Pipe& pipe)
    {
        posix_spawn_file_actions_adddup2(&actions, pipe.writingDescriptor(), stream);
    }

    /// Without this the descriptor would be closed in the child.
    void inherit(int descriptor) { posix_spawn_file_actions_adddup2(&actions, descriptor, descriptor); }

    void startSession() { addFlags(POSIX_SPAWN_SETSID); }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    void resetSignals()
    {
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigaddset(&signals, SIGTERM);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        addFlags(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }

    void addFlags(int flags)
    {
        m_flags |= flags;
        posix_spawnattr_setflags(&attributes, static_cast<short>(m_flags));
    }

    int m_flags = 0;
};

/// For posix_spawn. The pointers are valid while the texts exist.
std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (auto& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// The environment of this process, with the variable set to `value` or, if that is empty, without it.
std::vector<std::string> environmentWith(const std::string& variable, const std::string& value)
{
    std::vector<std::string> entries;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        if (variable.empty() || !std::string_view(*entry).starts_with(variable + '='))
            entries.emplace_back(*entry);
    }
    if (!value.empty())
        entries.push_back(variable + '=' + value);
    return entries;
}

/// The system refused to create the pipe.
bool isPipeMissing(const std::shared_ptr<Pipe>& pipe)
{
    return pipe && pipe->writingDescriptor() < 0;
}

} // namespace

void Process::passDescriptor(std::string variable, int descriptor)
{
    m_passedVariable = std::move(variable);
    m_passedDescriptor = descriptor;
}

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
    if (isPipeMissing(m_standardOutput) || isPipeMissing(m_standardError))
        return std::make_error_code(std::errc::too_many_files_open);
    SpawnPlan plan;
    if (m_standardOutput)
        plan.redirect(STDOUT_FILENO, *m_standardOutput);
    if (m_standardError)
        plan.redirect(STDERR_FILENO, *m_standardError);
    if (m_session == Session::Own)
        plan.startSession();
    if (m_passedDescriptor >= 0)
        plan.inherit(m_passedDescriptor);
    std::vector<std::string> words = {m_executable};
    words.insert(words.end(), m_arguments.begin(), m_arguments.end());
    std::vector<std::string> environment = environmentWith(
        m_passedVariable, m_passedDescriptor >= 0 ? std::to_string(m_passedDescriptor) : "");
    const std::lock_guard lock(m_mutex);
    const int failure = ::posix_spawn(&m_child, m_executable.c_str(), &plan.actions, &plan.attributes,
        pointersTo(words).data(), pointersTo(environment).data());
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
    // WNOWAIT leaves the child a zombie, so the system cannot reuse its number. It is reaped under the lock,
    // which terminate also takes.
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
