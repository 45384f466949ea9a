// SPDX-License-Identifier: MIT
#include "tests/support/ExternalProgram.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwell::test
{

namespace
{

constexpr int longestWait = 60000; // milliseconds
const std::string xdotool = "/usr/bin/xdotool";

std::string outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(longestWait);
    return process.readAllStandardOutput().toStdString();
}

} // namespace

ExternalProgram::ExternalProgram()
    : ExternalProgram(TARNWELL_BUILD_FOLDER "/bin/tarnwell")
{
}

ExternalProgram::ExternalProgram(const std::string& path)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QString::fromStdString(path), QStringList());
    EXPECT_TRUE(m_process.waitForStarted(longestWait));
}

ExternalProgram::~ExternalProgram()
{
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished(longestWait);
    }
}

int ExternalProgram::waitForExit()
{
    EXPECT_TRUE(m_process.state() == QProcess::NotRunning || m_process.waitForFinished(longestWait));
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

/// The window manager names a window the active one before the X server gives it the keys.
bool ExternalProgram::isActive(const std::string& title) const
{
    const auto isNamedSo = [&](const QStringList& command) {
        return outputOf(QString::fromStdString(xdotool), command).find(title) != std::string::npos;
    };
    return isNamedSo({QStringLiteral("getactivewindow"), QStringLiteral("getwindowname")})
        && isNamedSo({QStringLiteral("getwindowfocus"), QStringLiteral("getwindowname")});
}

void ExternalProgram::waitForWindow(const std::string& title)
{
    ASSERT_TRUE(waitUntil([&] { return isActive(title); })) << title;
}

void ExternalProgram::keys(const std::string& keys)
{
    ASSERT_EQ(run(xdotool, {"key", "--clearmodifiers", keys}), 0);
}

void ExternalProgram::text(const std::string& text)
{
    ASSERT_EQ(run(xdotool, {"type", "--clearmodifiers", "--delay", "4", "--", text}), 0);
}

void ExternalProgram::keysUntilWindow(const std::string& keysToPress, const std::string& title)
{
    ASSERT_TRUE(waitUntil([&] {
        if (!isActive(title))
            keys(keysToPress);
        return isActive(title);
    })) << title;
}

std::string ExternalProgram::waitForOutput(const std::string& text)
{
    EXPECT_TRUE(waitUntil([&] {
        m_output += m_process.readAllStandardOutput();
        return m_output.toStdString().find(text) != std::string::npos;
    })) << text;
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
