// SPDX-License-Identifier: MIT
#include "desktop/Panels.h"

#include "desktop/OutputPath.h"
#include "desktop/PathPanel.h"
#include "desktop/PathText.h"
#include "desktop/PortalDialogs.h"
#include "desktop/SheetQueue.h"
#include "platform/Sandbox.h"

#include <QFileInfo>
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

/// The folder in which a panel asks again. In the sandbox, where the path is the portal's, the portal
/// chooses.
QString folderToAskAgain(const QString& chosenFolder)
{
    return Sandbox::isInside() ? QString() : chosenFolder;
}

/// Shows the message or question about a path that a native panel has returned. Begins the panel again unless
/// the answer is to replace the file.
void beginOutputPathBox(
    QWidget& window, SheetQueue& sheets, OutputPath state, const QFileInfo& chosen, PathHandler handler)
{
    const QString output = withOutputExtension(chosen.filePath());
    QMessageBox* box = makeOutputPathBox(state, output, window);
    sheets.begin(box, [&window, &sheets, box, chosen, output, answer = std::move(handler)](int button) {
        box->deleteLater();
        if (button == QMessageBox::Yes)
            answer(pathOfText(output));
        else
            beginSavePanel(window, sheets, folderToAskAgain(chosen.path()), chosen.fileName(), answer);
    });
}

/// A native panel does not know that the extension is added, and some accept a folder that cannot be written.
void examineNativeChoice(QWidget& window, SheetQueue& sheets, const QString& path, const PathHandler& handler)
{
    const QFileInfo chosen(path);
    const QString output = withOutputExtension(path);
    const bool hasPanelAsked = arePortalDialogsUsed() && output == path;
    const OutputPath state = examineOutputPath(output);
    const bool isGrantMissing
        = Sandbox::isInside() && output != path; // the portal grants the chosen name only
    if (isGrantMissing)
        beginSavePanel(window, sheets, folderToAskAgain(chosen.path()), chosen.fileName(), handler);
    else if (state == OutputPath::IsFolder)
        beginSavePanel(window, sheets, output, chosen.fileName(), handler);
    else if (state == OutputPath::Usable || (state == OutputPath::Exists && hasPanelAsked))
        handler(pathOfText(output));
    else
        beginOutputPathBox(window, sheets, state, chosen, handler);
}

} // namespace

void disablePanelSettings()
{
    // QFileDialog always creates a QSettings object. Below a device no file can exist or be created.
    const QString nowhere = QStringLiteral("/dev/null/settings");
    for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope})
        QSettings::setPath(QSettings::NativeFormat, scope, nowhere);
}

void beginOpenPanel(QWidget& window, SheetQueue& sheets, const QString& folder, PathHandler handler)
{
    beginPanel(new OpenPanel(&window, folder), sheets, std::move(handler));
}

void beginSavePanel(
    QWidget& window, SheetQueue& sheets, const QString& folder, const QString& name, PathHandler handler)
{
    auto* panel = new SavePanel(&window, folder, name);
    beginPanel(panel, sheets, [&window, &sheets, panel, answer = std::move(handler)](const auto& path) {
        if (path && panel->isNative())
            examineNativeChoice(window, sheets, textOfPath(*path), answer);
        else
            answer(path);
    });
}

} // namespace tarnwell
