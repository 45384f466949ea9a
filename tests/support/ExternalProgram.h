// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Waiting.h"

#include <QProcess>
#include <QString>

#include <string>
#include <vector>

namespace tarnwell::test
{

/// The built program as a process of its own, operated by keys of the X server. A wait that reaches its limit
/// ends the test with a failure.
class ExternalProgram
{
public:
    /// Starts the program of the build tree. It inherits standard input and the environment.
    ExternalProgram();
    /// Starts a copy of the program. The tools are in the same folder.
    explicit ExternalProgram(const std::string& path);
    /// Kills the program if it still runs.
    ~ExternalProgram();
    ExternalProgram(const ExternalProgram&) = delete;
    ExternalProgram& operator=(const ExternalProgram&) = delete;

    qint64 processId() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// Waits for the end. Returns the exit status, or -1 after an end by a signal.
    int waitForExit();

    /// Waits until a window whose title contains `title` has the keyboard.
    void waitForWindow(const std::string& title, CallSite site = {});
    /// Presses keys into the window that has the keyboard, as in "ctrl+o".
    void keys(const std::string& keys);
    void text(const std::string& text);

    /// Presses the keys every two seconds until the window has the keyboard: a busy program ignores keys.
    void keysUntilWindow(const std::string& keys, const std::string& title, CallSite site = {});

    /// Waits for the file panel with that title, enters the path, and waits until the panel is closed. Enters
    /// the path again while the panel stays open: its list of completions can consume the Return key.
    void chooseInPanel(const std::string& title, const std::string& path, CallSite site = {});

    /// Waits until standard output contains the text. Returns the whole output so far.
    std::string waitForOutput(const std::string& text, CallSite site = {});

private:
    bool isActive(const std::string& title) const;
    bool isShown(const std::string& title) const;

    QProcess m_process;
    QByteArray m_output;
};

/// The ids of the processes that have `argument` among their arguments.
std::vector<long> processesWithArgument(const std::string& argument);

} // namespace tarnwell::test
