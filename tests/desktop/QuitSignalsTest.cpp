// SPDX-License-Identifier: MIT
#include "desktop/QuitSignals.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace tarnwell::test
{

namespace
{

/// Runs until the first signal is handled. Called in a child process.
[[noreturn]] void quitBy(int signal)
{
    const QuitSignals signals([] { std::quick_exit(7); });
    std::raise(signal);
    for (;;)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// No event is processed between the two signals.
[[noreturn]] void raiseTwice(int first, int second)
{
    const QuitSignals signals([] { std::quick_exit(7); });
    std::raise(first);
    std::raise(second);
    std::quick_exit(8);
}

[[noreturn]] void raiseIgnored(int signal)
{
    std::signal(signal, SIG_IGN);
    const QuitSignals signals([] { std::quick_exit(7); });
    std::raise(signal);
    std::raise(signal);
    QCoreApplication::processEvents();
    std::quick_exit(8);
}

} // namespace

TEST(QuitSignalsDeathTest, theFirstSignalCallsTheFunctionInTheEventLoop)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        EXPECT_EXIT(quitBy(signal), testing::ExitedWithCode(7), "");
}

TEST(QuitSignalsDeathTest, theSecondSignalKills)
{
    EXPECT_EXIT(raiseTwice(SIGTERM, SIGTERM), testing::KilledBySignal(SIGTERM), "");
    EXPECT_EXIT(raiseTwice(SIGTERM, SIGINT), testing::KilledBySignal(SIGINT), "");
}

TEST(QuitSignalsDeathTest, aSignalThatTheCallerIgnoresStaysIgnored)
{
    for (const int signal : {SIGINT, SIGHUP})
        EXPECT_EXIT(raiseIgnored(signal), testing::ExitedWithCode(8), "");
}

} // namespace tarnwell::test
