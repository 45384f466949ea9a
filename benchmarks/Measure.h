// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tarnwell::bench
{

/// Measures the time since its construction, in milliseconds.
class Stopwatch
{
public:
    double elapsed() const;

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// Runs the function and returns its duration in milliseconds.
double timeOf(const std::function<void()>& work);

/// The median and the first and third quartiles of a series of values.
struct Summary {
    double median = 0;
    double lower = 0;
    double upper = 0;
};

/// `values` must not be empty.
Summary summaryOf(std::vector<double> values);

/// Times of the application and of a reference, in milliseconds. Both times of a pair are measured one after
/// the other, so that other load on the machine affects both.
struct Pairs {
    std::vector<double> measured;
    std::vector<double> reference;

    void add(double measuredTime, double referenceTime);

    /// The median of the ratios of all pairs.
    double ratio() const;
    /// The median of `measured` minus `factor` times `reference`, in milliseconds; may be negative.
    double excessOver(double factor) const;
};

/// Measures both in each round, in alternating order: A B B A A B …
Pairs measureAlternating(
    int rounds, const std::function<double()>& measured, const std::function<double()>& reference);

/// The number with this many decimal places.
std::string formatNumber(double number, int digits);

/// A time with its unit: "1.2 ms", "123 ms", "12.3 s".
std::string formatTime(double milliseconds);

/// The median and the quartiles: "123 ms (120–130)".
std::string formatTime(const Summary& summary);

} // namespace tarnwell::bench
