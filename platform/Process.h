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

/// One run of a child process. The destructor neither terminates the child nor waits for it. Configure and
/// launch it on one thread; any thread may then call waitUntilExit and terminate.
///
/// | ending               | launch            | waitUntilExit          | terminate                  |
/// |----------------------|-------------------|------------------------|----------------------------|
/// | exit 0, exit n       | returns no error  | returns after the exit | does nothing after it      |
/// | killed by a signal   | returns no error  | returns after the exit | does nothing after it      |
/// | cancelled            | returns no error  | returns after the exit | sends SIGTERM              |
/// | did not start        | returns the error | returns immediately    | does nothing               |
///
/// The exit status is not stored: the application judges a tool by the file or the report that it leaves.
///
/// The child starts with an empty signal mask and the default action for SIGTERM, independent of the calling
/// thread. terminate therefore ends every program that does not handle SIGTERM. Other ignored signals remain
/// ignored: with SIGPIPE ignored an encoder continues after the application that reads its output has ended.
class Process
{
public:
    /// A child in the application's session receives the terminal's signals (Ctrl+C) together with the
    /// application. A child in its own session has no controlling terminal: it receives none of these signals
    /// and is not stopped when it reads the terminal.
    enum class Session { Shared, Own };

    /// Absolute path of the program, raw bytes.
    void setExecutable(std::string path) { m_executable = std::move(path); }
    /// The arguments after argv[0], raw bytes, passed on unchanged.
    void setArguments(std::vector<std::string> arguments) { m_arguments = std::move(arguments); }
    void setSession(Session session) { m_session = session; }
    /// A stream without a pipe is inherited from the application. Standard input is always inherited.
    void setStandardOutput(std::shared_ptr<Pipe> pipe) { m_standardOutput = std::move(pipe); }
    void setStandardError(std::shared_ptr<Pipe> pipe) { m_standardError = std::move(pipe); }
    /// The child inherits the descriptor under the same number, and finds this number in the environment
    /// variable. Without a call, or with a descriptor below 0, the child has no such variable.
    void passDescriptor(std::string variable, int descriptor);

    /// Starts the child and closes the application's copies of the pipes' writing ends. Returns the reason if
    /// the child did not start.
    std::error_code launch();

    /// Blocks the calling thread until the child has exited. Returns immediately if it never started.
    void waitUntilExit();

    /// Sends SIGTERM to a running child. Never signals another process that reuses the child's number.
    void terminate();

private:
    std::error_code spawn();

    std::string m_executable;
    std::vector<std::string> m_arguments;
    Session m_session = Session::Shared;
    std::shared_ptr<Pipe> m_standardOutput;
    std::shared_ptr<Pipe> m_standardError;
    std::string m_passedVariable; // empty for none
    int m_passedDescriptor = -1;
    std::mutex m_mutex;
    pid_t m_child = 0; // 0 before the launch and after the exit
};

} // namespace tarnwell
