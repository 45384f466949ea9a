// SPDX-License-Identifier: MIT
#include "benchmarks/Measure.h"

#include <algorithm>
#include <cstdio>

namespace tarnwell::bench
{

namespace
{

constexpr double millisecondsPerSecond = 1000;

/// Times below a tenth of a second are told in tenths of a millisecond, those above ten seconds in seconds.
struct Unit {
    const char* name;
    double milliseconds;
    int digits;
};

Unit unitFor(double milliseconds)
{
    constexpr double longInMilliseconds = 10 * millisecondsPerSecond;
    constexpr double shortInMilliseconds = millisecondsPerSecond / 10;
    if (milliseconds >= longInMilliseconds)
        return {" s", millisecondsPerSecond, 1};
    return {" ms", 1, milliseconds < shortInMilliseconds ? 1 : 0};
}

} // namespace

double Stopwatch::elapsed() const
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
}

double millisecondsOf(const std::function<void()>& work)
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

void Pairs::add(double measuredTime, double againstTime)
{
    measured.push_back(measuredTime);
    against.push_back(againstTime);
}

double Pairs::ratio() const
{
    std::vector<double> ratios;
    for (std::size_t pair = 0; pair < measured.size(); ++pair)
        ratios.push_back(measured[pair] / against[pair]);
    return summaryOf(ratios).median;
}

double Pairs::beyond(double factor) const
{
    std::vector<double> differences;
    for (std::size_t pair = 0; pair < measured.size(); ++pair)
        differences.push_back(measured[pair] - factor * against[pair]);
    return summaryOf(differences).median;
}

Pairs measureInTurn(
    int rounds, const std::function<double()>& measured, const std::function<double()>& against)
{
    Pairs pairs;
    for (int round = 0; round < rounds; ++round) {
        const double first = measured();
        pairs.add(first, against());
    }
    return pairs;
}

std::string withDigits(double number, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, number);
    return text;
}

std::string timeText(double milliseconds)
{
    const Unit unit = unitFor(milliseconds);
    return withDigits(milliseconds / unit.milliseconds, unit.digits) + unit.name;
}

std::string timeText(const Summary& summary)
{
    const Unit unit = unitFor(summary.median);
    const auto number = [&unit](double time) { return withDigits(time / unit.milliseconds, unit.digits); };
    return timeText(summary.median) + " (" + number(summary.lower) + "–" + number(summary.upper) + ")";
}

} // namespace tarnwell::bench
