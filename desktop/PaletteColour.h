// SPDX-License-Identifier: MIT
#pragma once

class QColor;
class QPalette;

namespace tarnwell
{

/// The share of the text colour that makes a secondary text: weaker than the main text, with a contrast of at
/// least 4.5 to the window in palettes whose text is black on white or white on black, or nearly so.
inline constexpr double secondaryTextShare = 0.72;

/// The palette's text colour laid over its window colour. `textShare` is from 0 to 1.
QColor mixedWithWindow(const QPalette& palette, double textShare);

} // namespace tarnwell
