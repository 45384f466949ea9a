// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <system_error>
#include <vector>

namespace tarnwell
{

class Pipe;

/// One run of a child process. Destroying it neither ends nor waits for the child. Set it up and launch it on
/// one thread; waitUntilExit and terminate may then be called from any.
///
/// | ending                | launch          | waitUntilExit        | terminate          |
/// |-----------------------|-----------------|----------------------|--------------------|
/// | exit 0, exit n        | no error        | returns at the exit  | nothing afterwards |
/// | killed by a signal    | no error        | returns at the death | nothing afterwards |
/// | cancelled (terminate) | no error        | returns at the exit  | sends SIGTERM      |
/// | did not start         | says why        | returns at once      | nothing            |
///
/// How the child ended is not kept: whether a tool did its work is judged by what it left behind.
class Process
{
public:
    /// Whether signals that the terminal sends to the application reach the child too.
    enum class Group { Shared, Own };

    /// Whether the child can be terminated from its first moment on, or starts with SIGTERM blocked and takes
    /// it when it is ready to: one that has something to put in order before it ends.
    enum class Termination { AtOnce, WhenReady };

    /// Absolute path of the program, raw bytes.
    void setExecutable(std::string path) { m_executable = std::move(path); }
    /// What follows the program's own name, in order, raw bytes, unchanged.
    void setArguments(std::vector<std::string> arguments) { m_arguments = std::move(arguments); }
    void setGroup(Group group) { m_group = group; }
    void setTermination(Termination termination) { m_termination = termination; }
    /// A stream without a pipe is the application's own.
    void setStandardOutput(std::shared_ptr<Pipe> pipe) { m_standardOutput = std::move(pipe); }
    void setStandardError(std::shared_ptr<Pipe> pipe) { m_standardError = std::move(pipe); }

    /// Starts the child and gives the writing ends away. Says why where it could not be started.
    std::error_code launch();

    /// Blocks the calling thread until the child has exited; at once where it never started.
    void waitUntilExit();

    /// Asks the child to end (SIGTERM). Never reaches another process that got the same number later.
    void terminate();

private:
    std::error_code spawn();

    std::string m_executable;
    std::vector<std::string> m_arguments;
    Group m_group = Group::Shared;
    Termination m_termination = Termination::AtOnce;
    std::shared_ptr<Pipe> m_standardOutput;
    std::shared_ptr<Pipe> m_standardError;
    std::mutex m_mutex;
    pid_t m_child = 0; // 0 before the launch and after the exit
};

} // namespace tarnwell
