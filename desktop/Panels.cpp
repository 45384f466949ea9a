// SPDX-License-Identifier: MIT
#include "desktop/Panels.h"

#include "desktop/PathPanel.h"
#include "desktop/SheetQueue.h"

namespace tarnwell
{

namespace
{

void beginPanel(PathPanel* panel, SheetQueue& sheets, PathHandler handler)
{
    sheets.begin(panel, [panel, answer = std::move(handler)](int result) {
        answer(result == QDialog::Accepted ? panel->chosenPath() : std::nullopt);
        // Only now: the answer may run an event loop of its own, inside the click or key press that the panel
        // is still handling.
        panel->deleteLater();
    });
}

} // namespace

void beginOpenPanel(QWidget& window, SheetQueue& sheets, PathHandler handler)
{
    beginPanel(new OpenPanel(&window), sheets, std::move(handler));
}

void beginSavePanel(QWidget& window, SheetQueue& sheets, const QString& name, PathHandler handler)
{
    beginPanel(new SavePanel(&window, name), sheets, std::move(handler));
}

} // namespace tarnwell
