// SPDX-License-Identifier: MIT
#include "desktop/ProgressBarMode.h"

#include <QProgressBar>

#include <algorithm>
#include <cmath>

namespace tarnwell
{

namespace
{

constexpr int nothing = 0;
constexpr int everything = 100;

} // namespace

void setIndeterminate(QProgressBar& bar)
{
    bar.setRange(nothing, nothing);
    bar.setValue(nothing);
}

void setDeterminate(QProgressBar& bar)
{
    bar.setRange(nothing, everything);
    bar.setValue(nothing);
}

void setProgress(QProgressBar& bar, double percent)
{
    const double shown = std::isnan(percent) ? nothing : std::clamp<double>(percent, nothing, everything);
    bar.setValue(static_cast<int>(shown));
}

} // namespace tarnwell
