// SPDX-License-Identifier: MIT
// From a click on Rotate or Flip to the painted picture, beside two plain copies of the picture into fresh
// memory.
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

/// Every turn with and without the mirror, by both kinds of button; it ends as it begins.
constexpr const char* clicks[] = {rotate, rotate, rotate, rotate, flip, rotate, rotate, rotate, rotate, flip};

/// Memory that was used before and given back to the allocator would not be fresh.
double copyTwice(const QImage& picture)
{
    ::malloc_trim(0);
    QImage copies[2];
    return millisecondsOf([&] {
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

/// A click's two parts: the drawing of the two pictures, and the showing of the second one.
Pairs measureParts(BenchWindow& window, const QImage& still, int count)
{
    Pairs parts;
    for (int round = 0; round < count; ++round) {
        const double angle = 90.0 * (round % 4);
        QImage mirrored;
        const double drawing
            = millisecondsOf([&] { mirrored = flipImage(rotateImage(still, angle), round % 8 >= 4, false); });
        parts.add(drawing, window.show(mirrored));
    }
    return parts;
}

void measureSize(const Setting& setting, const std::string& size)
{
    BenchWindow window;
    window.open(setting.clip(size));
    const QImage still = window.picture();
    const double first = window.click(rotate);
    for (int back = 0; back < 3; ++back)
        window.click(rotate);
    const Pairs pairs = measureEveryClick(window, still, setting.rounds(rounds));
    const Pairs parts = measureParts(window, still, setting.rounds(drawingRounds));
    setting.report.addGrowth({size, timeText(summaryOf(pairs.measured)), timeText(summaryOf(parts.measured)),
        timeText(summaryOf(parts.against)), timeText(first), timeText(summaryOf(pairs.against)),
        withDigits(pairs.ratio(), 2)});
    const auto budget = budgets.find(size);
    if (budget != budgets.end() || size == "1080p")
        setting.report.compare("rotate or flip a " + size + " clip: click to painted",
            "two copies of the picture", pairs,
            budget != budgets.end() ? std::optional(budget->second) : std::nullopt);
}

} // namespace

void measureClicks(const Setting& setting)
{
    setting.report.beginGrowth("Click to painted, by picture size",
        {"clip", "click to painted", "of which drawing twice", "of which scaling and painting", "first click",
            "two copies", "ratio"});
    for (const std::string size : pictureSizes)
        measureSize(setting, size);
}

} // namespace tarnwell::bench
