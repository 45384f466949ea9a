// SPDX-License-Identifier: MIT
#include "benchmarks/Measure.h"

#include <algorithm>
#include <cstdio>

namespace tarnwell::bench
{

namespace
{

constexpr double millisecondsPerSecond = 1000;

/// The unit of a printed time: 0.1 ms below 100 ms, 1 ms below 10 s, 0.1 s above.
struct Unit {
    const char* name;
    double milliseconds;
    int digits;
};

Unit unitFor(double milliseconds)
{
    constexpr double secondsLimit = 10 * millisecondsPerSecond;
    constexpr double tenthsLimit = millisecondsPerSecond / 10;
    if (milliseconds >= secondsLimit)
        return {" s", millisecondsPerSecond, 1};
    return {" ms", 1, milliseconds < tenthsLimit ? 1 : 0};
}

} // namespace

double Stopwatch::elapsed() const
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
}

double timeOf(const std::function<void()>& work)
{
    const Stopwatch stopwatch;
    work();
    return stopwatch.elapsed();
}

Summary summaryOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t last = values.size() - 1;
    return {(values[last / 2] + values[last - last / 2]) / 2, values[last / 4], values[last - last / 4]};
}

void Pairs::add(double measuredTime, double referenceTime)
{
    measured.push_back(measuredTime);
    reference.push_back(referenceTime);
}

double Pairs::ratio() const
{
    std::vector<double> ratios;
    for (std::size_t pair = 0; pair < measured.size(); ++pair)
        ratios.push_back(measured[pair] / reference[pair]);
    return summaryOf(ratios).median;
}

double Pairs::excessOver(double factor) const
{
    std::vector<double> differences;
    for (std::size_t pair = 0; pair < measured.size(); ++pair)
        differences.push_back(measured[pair] - factor * reference[pair]);
    return summaryOf(differences).median;
}

Pairs measureAlternating(
    int rounds, const std::function<double()>& measured, const std::function<double()>& reference)
{
    Pairs pairs;
    for (int round = 0; round < rounds; ++round) {
        const bool isMeasuredFirst = round % 2 == 0;
        const double first = isMeasuredFirst ? measured() : reference();
        const double second = isMeasuredFirst ? reference() : measured();
        pairs.add(isMeasuredFirst ? first : second, isMeasuredFirst ? second : first);
    }
    return pairs;
}

std::string formatNumber(double number, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, number);
    return text;
}

std::string formatTime(double milliseconds)
{
    const Unit unit = unitFor(milliseconds);
    return formatNumber(milliseconds / unit.milliseconds, unit.digits) + unit.name;
}

std::string formatTime(const Summary& summary)
{
    const Unit unit = unitFor(summary.median);
    const auto number = [&unit](double time) { return formatNumber(time / unit.milliseconds, unit.digits); };
    return formatTime(summary.median) + " (" + number(summary.lower) + "–" + number(summary.upper) + ")";
}

} // namespace tarnwell::bench
