// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Measure.h"

#include <optional>
#include <string>
#include <vector>

namespace tarnwell::bench
{

/// The limit of a time: `factor` times the reference plus `extra`.
struct Budget {
    double factor = 1;
    double extra = 0; // milliseconds
};

/// One row of the table of budgets, as text. `isOver` marks a figure that is over its budget.
struct BudgetRow {
    std::string what;
    std::string measured;
    std::string against;
    std::string ratio;
    std::string budget;
    bool isOver = false;
};

/// Writes Markdown tables into two files of a folder: the rows of the table of budgets into "budgets.md", all
/// other tables into "tables.md". Each row is written at once, and also to standard error.
class Report
{
public:
    explicit Report(std::string folder);

    /// `comparison` is the name of the reference. Without a budget the row is informative.
    void compare(const std::string& what, const std::string& comparison, const Pairs& pairs,
        std::optional<Budget> budget = std::nullopt);
    void add(const BudgetRow& line);
    void addNotMeasured(const std::string& what, const std::string& reason);

    /// Begins a table in "tables.md".
    void beginTable(const std::string& title, const std::vector<std::string>& columns);
    void addRow(const std::vector<std::string>& cells);

    bool isOverBudget() const { return m_isOver; }

private:
    void append(const std::string& file, const std::string& text) const;

    std::string m_folder;
    bool m_isOver = false;
};

/// Three cells: the measured time, the reference time and the ratio.
std::vector<std::string> timeCells(const Pairs& pairs);

/// Prints the reason on standard error and ends the program with exit status 2.
[[noreturn]] void exitWithError(const std::string& reason);

} // namespace tarnwell::bench
