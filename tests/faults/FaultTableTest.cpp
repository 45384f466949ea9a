// SPDX-License-Identifier: MIT
// Runs faultScenario with one failing system call: for each function the first call, the second call and so
// on, until the scenario makes fewer calls. Each run is a separate process. Prints a table of the outcomes.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <csignal>
#include <iostream>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr int maxCalls = 100;
// Milliseconds. Longer than the waits of the scenario, which print what they wait for when they fail.
constexpr int timeout = 100000;

/// The result of one run of faultScenario.
struct Attempt {
    bool hasFailed = false; // the scenario reached the call that fails
    bool isStopped = false; // ended by fatalError, which calls abort
    std::string outcome; // the printed outcomes, joined by "; "
};

QString buildPath(const char* name)
{
    return QStringLiteral(TARNWELL_BUILD_FOLDER "/tests/") + QString::fromLatin1(name);
}

std::string outcomesIn(const QByteArray& output)
{
    std::string outcomes;
    for (const QByteArray& line : output.split('\n')) {
        if (line.startsWith("OUTCOME "))
            outcomes += (outcomes.empty() ? "" : "; ") + line.mid(8).toStdString();
    }
    return outcomes;
}

Attempt runWith(const std::string& call, int time)
{
    const TemporaryDirectory folder;
    const std::string note = folder.path() + "failed";
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_PRELOAD"), buildPath("libfailingCalls.so"));
    environment.insert(QStringLiteral("TARNWELL_FAILED"), QString::fromStdString(note));
    environment.insert(QStringLiteral("TARNWELL_FAILS"),
        QString::fromStdString(call) + QLatin1Char(' ') + QString::number(time));
    environment.insert(QStringLiteral("TARNWELL_COUNT_ON_REQUEST"), QStringLiteral("1"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(buildPath("faultScenario"), QStringList());
    if (!process.waitForFinished(timeout)) {
        process.kill();
        process.waitForFinished();
        return {exists(note), false, "HANGS after " + outcomesIn(process.readAll())};
    }
    const bool isCrash = process.exitStatus() == QProcess::CrashExit;
    const QByteArray output = process.readAll();
    Attempt run = {exists(note), isCrash && process.exitCode() == SIGABRT, outcomesIn(output)};
    if (isCrash && !run.isStopped)
        run.outcome += "; CRASHES";
    if (!isCrash && !run.outcome.ends_with("clean"))
        std::cout << output.toStdString();
    return run;
}

} // namespace

class FaultTableTest : public testing::TestWithParam<const char*>
{
};

TEST_P(FaultTableTest, endsInAnAlertAStopOrTheJobDone)
{
    int time = 0;
    for (bool hasFailed = true; hasFailed && time < maxCalls;) {
        const Attempt run = runWith(GetParam(), ++time);
        hasFailed = run.hasFailed;
        if (hasFailed)
            std::cout << "| " << GetParam() << " | " << time << " | " << run.outcome
                      << (run.isStopped ? (run.outcome.empty() ? "stops" : "; stops") : "") << " |"
                      << std::endl;
        EXPECT_TRUE(run.isStopped || run.outcome.ends_with("clean"))
            << GetParam() << " " << time << ": " << run.outcome;
    }
    EXPECT_LT(time, maxCalls);
}

INSTANTIATE_TEST_SUITE_P(Calls, FaultTableTest,
    testing::Values("pipe2", "posix_spawn", "pthread_create", "read", "write", "poll", "waitid", "waitpid",
        "stat", "lstat", "fstat", "open", "mkdtemp", "unlink", "unlinkat", "remove", "rename"),
    [](const auto& call) { return std::string(call.param); });

} // namespace tarnwell::test
