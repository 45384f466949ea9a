// SPDX-License-Identifier: MIT
#include "desktop/ProgressBarMode.h"

#include <QProgressBar>

#include <gtest/gtest.h>

#include <limits>

namespace tarnwell::test
{

TEST(ProgressBarModeTest, anIndeterminateBarHasNoRange)
{
    QProgressBar bar;
    setIndeterminate(bar);
    EXPECT_EQ(bar.minimum(), bar.maximum());
    EXPECT_LE(bar.value(), 0);
}

TEST(ProgressBarModeTest, aDeterminateBarBeginsAtNothingOfAHundred)
{
    QProgressBar bar;
    setIndeterminate(bar);
    setDeterminate(bar);
    EXPECT_EQ(bar.minimum(), 0);
    EXPECT_EQ(bar.maximum(), 100);
    EXPECT_EQ(bar.value(), 0);
    setProgress(bar, 70);
    setDeterminate(bar);
    EXPECT_EQ(bar.value(), 0);
}

TEST(ProgressBarModeTest, showsWhatABarCanShow)
{
    struct Row {
        double percent;
        int shown;
    };
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr double huge = std::numeric_limits<double>::max();
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    QProgressBar bar;
    setDeterminate(bar);
    for (const Row row : {Row{0, 0}, {0.4, 0}, {50, 50}, {99.99, 99}, {100, 100}, {100.5, 100}, {1e300, 100},
             {huge, 100}, {infinite, 100}, {-1, 0}, {-huge, 0}, {-infinite, 0}, {noNumber, 0}}) {
        bar.setValue(37);
        setProgress(bar, row.percent);
        EXPECT_EQ(bar.value(), row.shown) << row.percent;
    }
}

} // namespace tarnwell::test
