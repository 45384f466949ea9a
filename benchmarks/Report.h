// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Measure.h"

#include <optional>
#include <string>
#include <vector>

namespace tarnwell::bench
{

/// What a time may come to: so many times what it is compared with, and so much more.
struct Budget {
    double factor = 1;
    double extra = 0; // milliseconds
};

/// What is known of one line of the table of budgets, in words.
struct Line {
    std::string what;
    std::string measured;
    std::string against;
    std::string ratio;
    std::string budget;
    bool isOver = false;
};

/// Collects rows of Markdown tables in files of one folder: "budgets.md" has the lines with budgets,
/// "growth.md" whole tables that show how costs grow. Each row is there as soon as it is known.
class Report
{
public:
    explicit Report(std::string folder);

    /// `comparison` says in words what the first of each pair is compared with.
    void compare(const std::string& what, const std::string& comparison, const Pairs& pairs,
        std::optional<Budget> budget = std::nullopt);
    void add(const Line& line);
    void addNotMeasured(const std::string& what, const std::string& reason);

    /// Begins a table in "growth.md"; the first column names the rows.
    void beginGrowth(const std::string& title, const std::vector<std::string>& columns);
    void addGrowth(const std::vector<std::string>& cells);

    bool isOverBudget() const { return m_isOver; }

private:
    void append(const std::string& file, const std::string& text) const;

    std::string m_folder;
    bool m_isOver = false;
};

/// The cells of a pair's median, median and ratio.
std::vector<std::string> cellsOf(const Pairs& pairs);

/// Says on standard error what the benchmark could not do, and ends the program with 2.
[[noreturn]] void giveUp(const std::string& reason);

} // namespace tarnwell::bench
