// SPDX-License-Identifier: MIT
#include "tests/support/ExternalProgram.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Samples.h"
#include "tests/support/Waiting.h"
#include "tests/support/XWindows.h"

#include <QDeadlineTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

const std::string xdotool = "/usr/bin/xdotool";

/// The window manager can mark a window as active before the X server assigns the keyboard focus.
bool isActive(const std::string& title)
{
    return titleAround(activeWindow()).find(title) != std::string::npos
        && titleAround(keyboardOwner()).find(title) != std::string::npos;
}

} // namespace

ExternalProgram::ExternalProgram()
    : ExternalProgram(TARNWELL_BUILD_FOLDER "/bin/tarnwell")
{
}

ExternalProgram::ExternalProgram(const std::string& path, Group group)
{
    if (group == Group::Own)
        m_process.setChildProcessModifier([] { ::setpgid(0, 0); });
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QString::fromStdString(path), QStringList());
    constexpr std::chrono::milliseconds limit = longestWait;
    if (!m_process.waitForStarted(static_cast<int>(limit.count())))
        failTest(path + " did not start");
}

ExternalProgram::~ExternalProgram()
{
    if (isRunning()) {
        m_process.kill();
        EXPECT_TRUE(waitForEnd(m_process));
    }
}

int ExternalProgram::waitForExit()
{
    EXPECT_TRUE(waitForEnd(m_process));
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void ExternalProgram::waitForWindow(const std::string& title, CallSite site)
{
    waitFor(
        "the keyboard of “" + title + "”", [&] { return isActive(title); }, site);
}

void ExternalProgram::keys(const std::string& keys)
{
    ASSERT_EQ(run(xdotool, {"key", "--clearmodifiers", keys}), 0);
}

void ExternalProgram::text(const std::string& text)
{
    ASSERT_EQ(run(xdotool, {"type", "--clearmodifiers", "--delay", "4", "--", text}), 0);
}

void ExternalProgram::enter(const std::string& path)
{
    ASSERT_EQ(run(xdotool,
                  {"key", "--clearmodifiers", "ctrl+a", "type", "--clearmodifiers", "--delay", "4", "--args",
                      "1", "--", path, "key", "--clearmodifiers", "Return"}),
        0);
}

void ExternalProgram::keysUntilWindow(const std::string& keysToPress, const std::string& title, CallSite site)
{
    // A shortcut that is pressed twice before its window is shown can open it twice.
    constexpr std::chrono::seconds interval(2);
    QDeadlineTimer nextPress(0);
    const auto pressUntilActive = [&] {
        if (isActive(title))
            return true;
        if (nextPress.hasExpired()) {
            keys(keysToPress);
            nextPress.setRemainingTime(interval);
        }
        return false;
    };
    waitFor("the keyboard of “" + title + "” after " + keysToPress, pressUntilActive, site);
}

void ExternalProgram::waitForWindows(const std::string& title, int count, CallSite site)
{
    waitFor(
        std::to_string(count) + " windows “" + title + "”", [&] { return shownWindows(title) == count; },
        site);
}

void ExternalProgram::chooseInPanel(const std::string& title, const std::string& path, CallSite site)
{
    waitForWindow(title, site);
    // Sufficient for a slow program: text that is entered after the panel is closed goes to another window.
    constexpr std::chrono::seconds interval(5);
    QDeadlineTimer nextAttempt(0);
    const auto isClosed = [&] {
        if (shownWindows(title) == 0)
            return true;
        if (nextAttempt.hasExpired() && isActive(title)) {
            enter(path);
            nextAttempt.setRemainingTime(interval);
        }
        return false;
    };
    waitFor("the end of the panel “" + title + "” after " + path, isClosed, site);
}

std::string ExternalProgram::waitForOutput(const std::string& text, CallSite site)
{
    const auto isPrinted = [&] {
        m_output += m_process.readAllStandardOutput();
        return m_output.toStdString().find(text) != std::string::npos;
    };
    waitFor("the output “" + text + "”", isPrinted, site);
    return m_output.toStdString();
}

std::vector<long> processesWithArgument(const std::string& argument)
{
    std::vector<long> processes;
    for (const auto& name : namesIn("/proc")) {
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const auto arguments = recordedArguments("/proc/" + name + "/cmdline");
        if (std::find(arguments.begin(), arguments.end(), argument) != arguments.end())
            processes.push_back(std::stol(name));
    }
    return processes;
}

} // namespace tarnwell::test
