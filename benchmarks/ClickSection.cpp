// SPDX-License-Identifier: MIT
// Measures the time from a click on Rotate or Flip to the painted picture. The reference is two plain copies
// of the picture into newly mapped memory.
#include "benchmarks/BenchWindow.h"
#include "benchmarks/Sections.h"
#include "orientation/Picture.h"

#include <malloc.h>
#include <map>

namespace tarnwell::bench
{

namespace
{

const std::map<std::string, Budget> budgets = {{"4K", {0.6, 0}}, {"8K", {0.8, 0}}};
constexpr int rounds = 6;
constexpr int drawingRounds = 15;

constexpr const char* rotate = "rotateLeftBTN";
constexpr const char* flip = "flipHorizontallyBTN";

/// All eight orientations. The sequence ends at the initial orientation.
constexpr const char* clicks[] = {rotate, rotate, rotate, rotate, flip, rotate, rotate, rotate, rotate, flip};

/// Returns free heap memory to the system first, so that the copies page-fault as they do for a new picture.
double copyTwice(const QImage& picture)
{
    ::malloc_trim(0);
    QImage copies[2];
    return timeOf([&] {
        for (QImage& copy : copies)
            copy = picture.copy();
    });
}

Pairs measureEveryClick(BenchWindow& window, const QImage& still, int count)
{
    Pairs pairs;
    for (int round = 0; round < count; ++round) {
        for (const char* button : clicks) {
            const double clicked = window.click(button);
            pairs.add(clicked, copyTwice(still));
        }
    }
    return pairs;
}

/// Splits a click into rotating and flipping the picture (`measured`) and showing the result (`reference`).
Pairs measureParts(BenchWindow& window, const QImage& still, int count)
{
    Pairs parts;
    for (int round = 0; round < count; ++round) {
        const double angle = 90.0 * (round % 4);
        QImage mirrored;
        const double drawing
            = timeOf([&] { mirrored = flipImage(rotateImage(still, angle), round % 8 >= 4, false); });
        parts.add(drawing, window.show(mirrored));
    }
    return parts;
}

void measureSize(const BenchContext& context, const std::string& size)
{
    BenchWindow window;
    window.open(context.clip(size));
    const QImage still = window.picture();
    const double first = window.click(rotate);
    for (int turn = 0; turn < 3; ++turn) // back to the initial orientation
        window.click(rotate);
    const Pairs pairs = measureEveryClick(window, still, context.rounds(rounds));
    const Pairs parts = measureParts(window, still, context.rounds(drawingRounds));
    context.report.addRow({size, formatTime(summaryOf(pairs.measured)), formatTime(summaryOf(parts.measured)),
        formatTime(summaryOf(parts.reference)), formatTime(first), formatTime(summaryOf(pairs.reference)),
        formatNumber(pairs.ratio(), 2)});
    const auto budget = budgets.find(size);
    if (budget != budgets.end() || size == "1080p")
        context.report.compare("rotate or flip a " + size + " clip: click to painted",
            "two copies of the picture", pairs,
            budget != budgets.end() ? std::optional(budget->second) : std::nullopt);
}

} // namespace

void measureClicks(const BenchContext& context)
{
    context.report.beginTable("Click to painted, by picture size",
        {"clip", "click to painted", "of which drawing twice", "of which scaling and painting", "first click",
            "two copies", "ratio"});
    for (const std::string size : pictureSizes)
        measureSize(context, size);
}

} // namespace tarnwell::bench
