// SPDX-License-Identifier: MIT
#pragma once

class QProgressBar;

namespace tarnwell
{

// A QProgressBar is indeterminate when its range is empty. Its values are integers, so NaN and values out of
// range are clamped first.

/// Shows that work is in progress, without a percentage.
void setIndeterminate(QProgressBar& bar);

/// Shows a percentage from 0 to 100, starting at 0.
void setDeterminate(QProgressBar& bar);

/// Shows a percentage, rounded down. Values below 0 and NaN show as 0, values above 100 as 100.
void setProgress(QProgressBar& bar, double percent);

} // namespace tarnwell
