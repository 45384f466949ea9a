// SPDX-License-Identifier: MIT
// Open and analyse: from the choice of a file to its still frame in the window, or to the alert that refuses
// it.
#include "app/Alerts.h"
#include "app/AppDelegate.h"
#include "app/DragAndDropFileInNSImageView.h"
#include "app/SheetTitles.h"
#include "app/SupportAddress.h"
#include "desktop/Panels.h"
#include "desktop/ProgressBarMode.h"
#include "platform/FatalError.h"
#include "probe/FileProbe.h"

namespace tarnwell
{

void AppDelegate::openMenuBTNClicked()
{
    openFilePanel();
}

void AppDelegate::openToolBarBTNClicked()
{
    openFilePanel();
}

void AppDelegate::openFilePanel()
{
    beginOpenPanel(required(m_outlets.window), required(m_outlets.sheets), m_panelFolder.path(),
        [this](const auto& path) {
            if (path)
                analyzeFile(FileURL(*path));
        });
}

void AppDelegate::fileAddedByDragAndDrop(const Notification& notification)
{
    const auto entry = notification.userInfo.find(fileDroppedKey);
    if (entry == notification.userInfo.end())
        fatalError();
    analyzeFile(required(std::any_cast<FileURL>(&entry->second)));
}

void AppDelegate::dropFailed()
{
    failedDropAlert().beginSheetModal(required(m_outlets.window), required(m_outlets.sheets));
}

void AppDelegate::openFailed()
{
    failedOpenAlert().beginSheetModal(required(m_outlets.window), required(m_outlets.sheets));
}

void AppDelegate::analyzeFile(const FileURL& url)
{
    m_panelFolder.remember(url.path());
    showAnalysisProgress();
    required(m_outlets.sheets).waitUntilPainted(&required(m_outlets.progressWindow));
    m_inputWhenOpened.emplace(url.path()); // before the analysis, which a change can overtake
    const auto probe = std::make_shared<const FileProbe>(url.path(), m_tools);
    globalFP.store(probe); // a refused file too: a later save uses the file that was analysed last
    if (lowerCased(url.pathExtension()) == "vob")
        refuseFile("Tarnwell cannot open .VOB files.", "Questions? : " + supportAddress());
    else if (!isSuitable(*probe))
        refuseFile("Seems to be an unsupported file.\nDoes the video play in a video player?",
            "Please try opening some other file or contact : " + supportAddress());
    else
        acceptFile(*probe);
}

void AppDelegate::acceptFile(const FileProbe& probe)
{
    // Two extractions, so that the view and currentImage hold separate images.
    required(m_outlets.posterFrameIMGV).setImage(extractPosterFrame(probe));
    currentImage = extractPosterFrame(probe);
    m_orientation = {};
    m_texts.setVideo(probe);
    setEditingControlsEnabled(true);
    hideAnalysisProgress();
}

void AppDelegate::refuseFile(const std::string& messageText, const std::string& informativeText)
{
    // The alert waits in the queue behind the progress sheet and appears when the sheet ends.
    refusalAlert(messageText, informativeText)
        .beginSheetModal(required(m_outlets.window), required(m_outlets.sheets));
    hideAnalysisProgress();
}

QImage AppDelegate::extractPosterFrame(const FileProbe& probe)
{
    return m_stillFrames.extract(probe, m_tools);
}

void AppDelegate::removeStillFolder()
{
    m_stillFrames.removeFolder();
}

void AppDelegate::showAnalysisProgress()
{
    setIndeterminate(required(m_outlets.progressBar));
    required(m_outlets.progressCancel).hide();
    required(m_outlets.progressTitle).setText(QStringLiteral("Analyzing Video..."));
    required(m_outlets.progressWindow).setWindowTitle(openingTitle());
    beginSheet(m_outlets.progressWindow);
}

void AppDelegate::hideAnalysisProgress()
{
    setDeterminate(required(m_outlets.progressBar));
    required(m_outlets.progressCancel).show();
    endSheet(m_outlets.progressWindow);
}

} // namespace tarnwell
