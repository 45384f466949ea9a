// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Measure.h"

#include <QTimer>

#include <atomic>
#include <thread>

namespace tarnwell::bench
{

/// How much of the main thread's time goes into work, from `begin` to `end`. Main thread.
class MainThreadLoad
{
public:
    void begin();
    void end();

    /// Processor time per time, in hundredths.
    double percent() const { return m_percent; }

private:
    Stopwatch m_stopwatch;
    double m_processorTime = 0;
    double m_percent = 0;
};

/// The longest that the main thread's events had to wait, by a timer that is due every few milliseconds; and
/// how long an idle thread beside it, which does the same, had to wait for a processor. Main thread.
class StallWatch
{
public:
    StallWatch();
    ~StallWatch();

    void begin();
    void end();

    /// Milliseconds.
    double longest() const { return m_longest; }
    double longestOfIdleThread() const { return m_longestOfIdleThread; }

private:
    void tick();
    void idle();

    QTimer m_timer;
    Stopwatch m_sinceTick;
    double m_longest = 0;
    std::thread m_idleThread;
    std::atomic<bool> m_isIdling = false;
    std::atomic<double> m_longestOfIdleThread = 0;
};

} // namespace tarnwell::bench
