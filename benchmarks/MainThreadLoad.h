// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Measure.h"

#include <QTimer>

#include <atomic>
#include <thread>

namespace tarnwell::bench
{

/// Measures the processor time of the main thread from `begin` to `end`. Main thread only.
class MainThreadLoad
{
public:
    void begin();
    void end();

    /// Processor time in percent of the elapsed time.
    double percent() const { return m_percent; }

private:
    Stopwatch m_stopwatch;
    double m_processorTime = 0;
    double m_percent = 0;
};

/// Measures the longest delay of a 5 ms timer on the main thread. An idle thread measures the delay of a 5 ms
/// sleep at the same time, which shows how long the system keeps a ready thread waiting. Main thread only.
class StallDetector
{
public:
    StallDetector();
    ~StallDetector();

    void begin();
    void end();

    /// Both in milliseconds.
    double longest() const { return m_longest; }
    double longestIdle() const { return m_longestIdle; }

private:
    void tick();
    void idle();

    QTimer m_timer;
    Stopwatch m_sinceTick;
    double m_longest = 0;
    std::thread m_idleThread;
    std::atomic<bool> m_isIdling = false;
    std::atomic<double> m_longestIdle = 0;
};

} // namespace tarnwell::bench
