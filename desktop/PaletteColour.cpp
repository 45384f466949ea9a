// SPDX-License-Identifier: MIT
#include "desktop/PaletteColour.h"

#include <QColor>
#include <QPalette>

namespace tarnwell
{

QColor mixedWithWindow(const QPalette& palette, double textShare)
{
    const QColor under = palette.color(QPalette::Window);
    const QColor over = palette.color(QPalette::WindowText);
    const auto blend = [textShare](int from, int to) { return from + qRound((to - from) * textShare); };
    return QColor(
        blend(under.red(), over.red()), blend(under.green(), over.green()), blend(under.blue(), over.blue()));
}

} // namespace tarnwell
