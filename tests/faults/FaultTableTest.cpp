// SPDX-License-Identifier: MIT
// Runs faultScenario with one failing system call: for each function the first call, the second call and so
// on, as many as the scenario makes without a failure. Each run is a separate process. Prints a table of the
// outcomes.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <csignal>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr int mostCalls = 100;
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

/// Runs the scenario with that environment variable of failingCalls.cpp.
Attempt runWith(const QString& variable, const std::string& value)
{
    const TemporaryDirectory folder;
    const std::string note = folder.path() + "failed";
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_PRELOAD"), buildPath("libfailingCalls.so"));
    environment.insert(QStringLiteral("TARNWELL_FAILED"), QString::fromStdString(note));
    environment.insert(variable, QString::fromStdString(value));
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

/// The number of calls per function that the scenario makes without a failure.
std::map<std::string, int> numbersOfCalls()
{
    const TemporaryDirectory folder;
    const std::string note = folder.path() + "counts";
    const Attempt run = runWith(QStringLiteral("TARNWELL_COUNTS"), note);
    EXPECT_EQ(run.outcome, "picture; Video Rotated Successfully!; clean");
    std::istringstream lines(contentsOf(note));
    std::map<std::string, int> numbers;
    std::string call;
    for (int number = 0; lines >> call >> number;)
        numbers[call] = number;
    EXPECT_FALSE(numbers.empty());
    return numbers;
}

} // namespace

class FaultTableTest : public testing::TestWithParam<const char*>
{
};

TEST_P(FaultTableTest, endsInAnAlertAStopOrTheJobDone)
{
    static std::map<std::string, int> numbers = numbersOfCalls();
    const std::string call = GetParam();
    ASSERT_GT(numbers[call], 0);
    ASSERT_LT(numbers[call], mostCalls);
    for (int time = 1; time <= numbers[call]; ++time) {
        const std::string failure = call + " " + std::to_string(time);
        const Attempt run = runWith(QStringLiteral("TARNWELL_FAILS"), failure);
        // The number of some calls depends on the times of processes and threads.
        if (run.hasFailed)
            std::cout << "| " << call << " | " << time << " | " << run.outcome
                      << (run.isStopped ? (run.outcome.empty() ? "stops" : "; stops") : "") << " |"
                      << std::endl;
        EXPECT_TRUE(run.isStopped || run.outcome.ends_with("clean")) << failure << ": " << run.outcome;
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, FaultTableTest,
    testing::Values("pipe2", "posix_spawn", "pthread_create", "read", "write", "poll", "waitid", "waitpid",
        "stat", "lstat", "fstat", "open", "mkdtemp", "remove"),
    [](const auto& call) { return std::string(call.param); });

} // namespace tarnwell::test
