// SPDX-License-Identifier: MIT
#include "benchmarks/MainThreadLoad.h"

#include <algorithm>
#include <ctime>

namespace tarnwell::bench
{

namespace
{

constexpr std::chrono::milliseconds interval(5);
constexpr double intervalInMilliseconds = 5;

double processorMilliseconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// How much more time than the interval has passed, in milliseconds.
double delay(const Stopwatch& sinceLast)
{
    return std::max(0.0, sinceLast.elapsed() - intervalInMilliseconds);
}

} // namespace

void MainThreadLoad::begin()
{
    m_processorTime = processorMilliseconds();
    m_stopwatch = {};
}

void MainThreadLoad::end()
{
    constexpr double hundred = 100;
    m_percent = (processorMilliseconds() - m_processorTime) / m_stopwatch.elapsed() * hundred;
}

StallDetector::StallDetector()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(interval);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { tick(); });
}

StallDetector::~StallDetector()
{
    end();
}

void StallDetector::begin()
{
    m_sinceTick = {};
    m_timer.start();
    m_isIdling = true;
    m_idleThread = std::thread([this] { idle(); });
}

void StallDetector::end()
{
    m_timer.stop();
    m_isIdling = false;
    if (m_idleThread.joinable())
        m_idleThread.join();
}

void StallDetector::tick()
{
    m_longest = std::max(m_longest, delay(m_sinceTick));
    m_sinceTick = {};
}

void StallDetector::idle()
{
    while (m_isIdling) {
        const Stopwatch stopwatch;
        std::this_thread::sleep_for(interval);
        m_longestIdle = std::max(m_longestIdle.load(), delay(stopwatch));
    }
}

} // namespace tarnwell::bench
