// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tarnwell::bench
{

/// Milliseconds since it was made.
class Stopwatch
{
public:
    double elapsed() const;

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// How long the work takes, in milliseconds.
double millisecondsOf(const std::function<void()>& work);

/// The median, between the first and the third quartile.
struct Summary {
    double median = 0;
    double lower = 0;
    double upper = 0;
};

/// Of at least one value.
Summary summaryOf(std::vector<double> values);

/// What was measured side by side, in milliseconds: other work on the machine then slows both of a pair.
struct Pairs {
    std::vector<double> measured;
    std::vector<double> against;

    void add(double measuredTime, double againstTime);

    /// The median of the pairs' ratios.
    double ratio() const;
    /// The median of what is measured beyond `factor` times the other; milliseconds, negative for less.
    double beyond(double factor) const;
};

/// Measures the two in turn, A B A B and so on.
Pairs measureInTurn(
    int rounds, const std::function<double()>& measured, const std::function<double()>& against);

/// The number with so many digits after the point.
std::string withDigits(double number, int digits);

/// A time as people read it: "1.2 ms", "123 ms", "12.3 s".
std::string timeText(double milliseconds);

/// Median and spread: "123 ms (120–130)".
std::string timeText(const Summary& summary);

} // namespace tarnwell::bench
