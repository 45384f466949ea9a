// SPDX-License-Identifier: MIT
// Save: shows the save panel and starts the export with the input and output paths.
#include "app/Alerts.h"
#include "app/AppDelegate.h"
#include "desktop/Panels.h"
#include "desktop/PathText.h"
#include "platform/FatalError.h"
#include "platform/Sandbox.h"
#include "probe/FileProbe.h"
#include "util/Unicode.h"

namespace tarnwell
{

namespace
{

/// In the sandbox the paths of one file differ, and saving to the input would replace it.
bool isOtherGrantOf(const std::string& inputPath, const std::string& outputPath)
{
    return Sandbox::isInside() && Sandbox::areGrantsOfOneFile(inputPath, outputPath);
}

} // namespace

void AppDelegate::saveMenuBTNClicked()
{
    presentSavePanel();
}

void AppDelegate::saveToolBarBTNClicked()
{
    saveMenuBTNClicked();
}

void AppDelegate::presentSavePanel()
{
    const QString name = textOf(orientationLabel(m_orientation));
    beginSavePanel(required(m_outlets.window), required(m_outlets.sheets), m_panelFolder.path(), name,
        [this](const auto& path) {
            if (path)
                saveTo(*path);
        });
}

void AppDelegate::saveTo(const std::string& outputPath)
{
    m_panelFolder.remember(outputPath);
    const auto probe = globalFP.load();
    const auto& inputPath = required(probe).fileFullPath;
    if (!inputPath)
        return;
    if (isCanonicallyEquivalent(*inputPath, outputPath) || isOtherGrantOf(*inputPath, outputPath))
        sameFileAlert().beginSheetModal(required(m_outlets.window), required(m_outlets.sheets));
    else if (!refusesChangedInput(*inputPath))
        chooseExportMode(*inputPath, outputPath);
}

bool AppDelegate::refusesChangedInput(const std::string& inputPath)
{
    if (m_inputWhenOpened == FileFingerprint(inputPath))
        return false;
    changedInputAlert().beginSheetModal(required(m_outlets.window), required(m_outlets.sheets));
    return true;
}

} // namespace tarnwell
