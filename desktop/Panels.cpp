// SPDX-License-Identifier: MIT
#include "desktop/Panels.h"

#include "desktop/PathPanel.h"
#include "desktop/PathText.h"
#include "desktop/SheetQueue.h"
#include "platform/FileURL.h"

#include <QSettings>

namespace tarnwell
{

namespace
{

void beginPanel(PathPanel* panel, SheetQueue& sheets, PathHandler handler)
{
    sheets.begin(panel, [panel, answer = std::move(handler)](int result) {
        answer(result == QDialog::Accepted ? panel->chosenPath() : std::nullopt);
        // Not earlier: the handler can run a nested event loop, which deletes the panel while it still
        // processes the click or key press.
        panel->deleteLater();
    });
}

} // namespace

void disablePanelSettings()
{
    // QFileDialog always creates a QSettings object. Below a device no file can exist or be created.
    const QString nowhere = QStringLiteral("/dev/null/settings");
    for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope})
        QSettings::setPath(QSettings::NativeFormat, scope, nowhere);
}

void beginOpenPanel(QWidget& window, SheetQueue& sheets, PathHandler handler)
{
    beginPanel(new OpenPanel(&window), sheets, std::move(handler));
}

void beginSavePanel(QWidget& window, SheetQueue& sheets, const QString& name, PathHandler handler)
{
    auto* panel = new SavePanel(&window, name);
    beginPanel(panel, sheets, [panel, &window, &sheets, answer = std::move(handler)](const auto& path) {
        if (panel->isExtensionMissing()) // in the sandbox: the portal grants the chosen name only
            beginSavePanel(window, sheets, textOfPath(lastPathComponent(*path)), answer);
        else
            answer(path);
    });
}

} // namespace tarnwell
