// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Waiting.h"

#include <QProcess>
#include <QString>

#include <string>
#include <vector>

namespace tarnwell::test
{

/// The built program as a process of its own, operated by keys of the X server. Each wait ends the test where
/// the awaited does not come.
class ExternalProgram
{
public:
    /// Starts it; `standardInput` and the like are the test's.
    ExternalProgram();
    /// Starts the copy of it at that path, which has the tools beside it.
    explicit ExternalProgram(const std::string& path);
    /// Ends it where it still runs.
    ~ExternalProgram();
    ExternalProgram(const ExternalProgram&) = delete;
    ExternalProgram& operator=(const ExternalProgram&) = delete;

    qint64 processId() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// Waits for the end; the exit status, or -1 after an end by a signal.
    int waitForExit();

    /// Waits for a window of the program whose title holds `title`, until it has the keyboard.
    void waitForWindow(const std::string& title, CallSite site = {});
    /// Presses keys into the window that has the keyboard, as in "ctrl+o".
    void keys(const std::string& keys);
    void text(const std::string& text);

    /// Presses keys again and again until the window is there: the program takes none while it is at work.
    void keysUntilWindow(const std::string& keys, const std::string& title, CallSite site = {});

    /// Waits until standard output holds the text; all that was printed so far.
    std::string waitForOutput(const std::string& text, CallSite site = {});

private:
    bool isActive(const std::string& title) const;

    QProcess m_process;
    QByteArray m_output;
};

/// The numbers of the processes that have `argument` among their arguments.
std::vector<long> processesWithArgument(const std::string& argument);

} // namespace tarnwell::test
