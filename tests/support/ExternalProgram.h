// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Waiting.h"

#include <QProcess>
#include <QString>

#include <string>
#include <vector>

namespace tarnwell::test
{

/// The built program as a separate process, operated by the X server's keyboard events. A wait that exceeds
/// its limit fails and ends the test.
class ExternalProgram
{
public:
    /// Starts the program of the build tree. It inherits standard input and the environment.
    ExternalProgram();
    enum class Group {
        Shared,
        Own, // like a program that an interactive shell starts
    };

    /// Starts a copy of the program. The copy's folder must contain the tools.
    explicit ExternalProgram(const std::string& path, Group group = Group::Shared);
    /// Kills the program if it still runs.
    ~ExternalProgram();
    ExternalProgram(const ExternalProgram&) = delete;
    ExternalProgram& operator=(const ExternalProgram&) = delete;

    qint64 processId() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// Waits for the exit. Returns the exit status, or -1 after a signal.
    int waitForExit();

    /// Waits until a window with `title` in its title has the keyboard focus.
    void waitForWindow(const std::string& title, CallSite site = {});
    /// Waits until that many windows with exactly this title are visible.
    void waitForWindows(const std::string& title, int count, CallSite site = {});
    /// Sends key presses such as "ctrl+o" to the window with the keyboard focus.
    void keys(const std::string& keys);
    void text(const std::string& text);

    /// Presses the keys every two seconds until the window has the keyboard focus: a busy program ignores
    /// keys.
    void keysUntilWindow(const std::string& keys, const std::string& title, CallSite site = {});

    /// Waits for the file panel with that title, enters the path, and waits until the panel is closed. Enters
    /// the path again if the panel remains open, because its list of completions can consume the Return key.
    void chooseInPanel(const std::string& title, const std::string& path, CallSite site = {});

    /// Waits until standard output contains the text. Returns the whole output so far.
    std::string waitForOutput(const std::string& text, CallSite site = {});

private:
    /// Replaces the text of the field with the keyboard focus, and presses Return.
    void enter(const std::string& path);

    QProcess m_process;
    QByteArray m_output;
};

/// The ids of the processes that have `argument` among their arguments.
std::vector<long> processesWithArgument(const std::string& argument);

} // namespace tarnwell::test
