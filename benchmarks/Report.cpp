// SPDX-License-Identifier: MIT
#include "benchmarks/Report.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

namespace tarnwell::bench
{

namespace
{

constexpr int exitNotMeasured = 2;

std::string row(const std::vector<std::string>& cells)
{
    std::string text = "|";
    for (const auto& cell : cells)
        text += " " + cell + " |";
    return text + "\n";
}

std::string budgetText(const Budget& budget)
{
    std::string text = formatNumber(budget.factor, 2);
    if (budget.extra > 0)
        text += " + " + formatNumber(budget.extra, 0) + " ms";
    return text;
}

std::string ratioText(const Pairs& pairs, const std::optional<Budget>& budget)
{
    std::string text = formatNumber(pairs.ratio(), 2);
    if (budget && budget->extra > 0) {
        const double beyond = pairs.excessOver(budget->factor);
        text += " = " + formatNumber(budget->factor, 2) + (beyond < 0 ? " − " : " + ")
            + formatNumber(beyond < 0 ? -beyond : beyond, 0) + " ms";
    }
    return text;
}

} // namespace

Report::Report(std::string folder)
    : m_folder(std::move(folder))
{
}

void Report::compare(
    const std::string& what, const std::string& comparison, const Pairs& pairs, std::optional<Budget> budget)
{
    BudgetRow line;
    line.what = what;
    line.measured = formatTime(summaryOf(pairs.measured));
    line.against = comparison + ": " + formatTime(summaryOf(pairs.reference));
    line.ratio = ratioText(pairs, budget);
    if (budget) {
        line.budget = budgetText(*budget);
        line.isOver = budget->extra > 0 ? pairs.excessOver(budget->factor) > budget->extra
                                        : pairs.ratio() > budget->factor;
    }
    add(line);
}

void Report::add(const BudgetRow& line)
{
    m_isOver = m_isOver || line.isOver;
    append("budgets.md",
        row({line.what, line.measured, line.against, line.ratio, line.budget,
            line.isOver ? "**over**" : ""}));
}

void Report::addNotMeasured(const std::string& what, const std::string& reason)
{
    add({what, "not measured: " + reason, "", "", "", false});
}

void Report::beginTable(const std::string& title, const std::vector<std::string>& columns)
{
    append("tables.md",
        "\n### " + title + "\n\n" + row(columns) + row(std::vector<std::string>(columns.size(), "---")));
}

void Report::addRow(const std::vector<std::string>& cells)
{
    append("tables.md", row(cells));
}

void Report::append(const std::string& file, const std::string& text) const
{
    std::ofstream(m_folder + "/" + file, std::ios::app) << text;
    std::cerr << text;
}

std::vector<std::string> timeCells(const Pairs& pairs)
{
    return {formatTime(summaryOf(pairs.measured)), formatTime(summaryOf(pairs.reference)),
        formatNumber(pairs.ratio(), 2)};
}

void exitWithError(const std::string& reason)
{
    std::cerr << "bench: " << reason << std::endl;
    std::_Exit(exitNotMeasured);
}

} // namespace tarnwell::bench
