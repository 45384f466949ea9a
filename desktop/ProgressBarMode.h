// SPDX-License-Identifier: MIT
#pragma once

class QProgressBar;

namespace tarnwell
{

/// Shows that work goes on, without saying how much of it is left.
void setIndeterminate(QProgressBar& bar);

/// Shows how much is done, from 0 to 100 percent; nothing for now.
void setDeterminate(QProgressBar& bar);

/// Shows `percent` of the work as done. The bar shows what it can: 0 for less and for what is not a number,
/// 100 for more.
void setProgress(QProgressBar& bar, double percent);

} // namespace tarnwell
