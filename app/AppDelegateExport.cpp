// SPDX-License-Identifier: MIT
// Export: the choice of the mode, the encoder's run in the background with its progress, and the result.
#include "app/Alerts.h"
#include "app/AppDelegate.h"
#include "app/SheetTitles.h"
#include "desktop/InputBlocker.h"
#include "desktop/ProgressBarMode.h"
#include "desktop/Workspace.h"
#include "export/ExportPlan.h"
#include "export/Progress.h"
#include "platform/CommitToken.h"
#include "platform/Diagnostics.h"
#include "platform/DispatchQueue.h"
#include "platform/FatalError.h"
#include "platform/FileHandle.h"
#include "platform/Process.h"
#include "probe/FileProbe.h"

#include <filesystem>
#include <system_error>

namespace tarnwell
{

void AppDelegate::chooseExportMode(const std::string& inputPath, const std::string& outputPath)
{
    printLine(orientationLine(m_orientation));
    const auto probe = globalFP.load();
    if (!isFixFlagPossible(trackCodecs(required(probe).tracksInfo), m_orientation)) {
        startCreatorRun(outputPath, transcodeArguments(inputPath, outputPath));
        return;
    }
    modeAlert().beginSheetModal(
        required(m_outlets.window), required(m_outlets.sheets), [this, inputPath, outputPath](int response) {
            // The alert can be open for any time.
            if (response < Alert::firstButtonResponse || !refusesChangedInput(inputPath))
                exportModeChosen(response, inputPath, outputPath);
        });
}

void AppDelegate::exportModeChosen(int response, const std::string& inputPath, const std::string& outputPath)
{
    if (response == Alert::firstButtonResponse)
        startCreatorRun(outputPath, fixFlagArguments(inputPath, outputPath));
    else if (response == Alert::secondButtonResponse)
        startCreatorRun(outputPath, transcodeArguments(inputPath, outputPath));
    else
        printLine("Something is Wrong!");
}

ArgumentList AppDelegate::fixFlagArguments(const std::string& inputPath, const std::string& outputPath)
{
    const auto probe = globalFP.load();
    const auto rotation = fixFlagRotation(m_orientation, required(probe).tagRotateValue);
    auto arguments = fixFlagArgumentList(inputPath, outputPath, rotation);
    for (const auto& line : fixFlagLines(arguments, rotation))
        printLine(line);
    return arguments;
}

ArgumentList AppDelegate::transcodeArguments(const std::string& inputPath, const std::string& outputPath)
{
    auto arguments = transcodeArgumentList(inputPath, outputPath, m_orientation);
    printLine(argumentListLine(arguments));
    return arguments;
}

void AppDelegate::startCreatorRun(const std::string& outputPath, const ArgumentList& arguments)
{
    isProcessCancelledByUser = false;
    m_outputPlace.emplace(outputPath);
    m_outputBeforeRun.emplace(m_outputPlace->path());
    m_commitToken = std::make_shared<CommitToken>();
    m_blockerBeforeSheet = std::make_unique<InputBlocker>();
    asyncUserInitiated([self = shared_from_this(), outputPath, arguments, token = m_commitToken] {
        self->runCreator(outputPath, arguments, *token);
    });
}

void AppDelegate::runCreator(
    const std::string& outputPath, const ArgumentList& arguments, const CommitToken& token)
{
    const auto self = shared_from_this();
    m_mainQueue->async([self] { self->showProgressSheet(); });
    const auto creator = std::make_shared<Process>();
    creator->setExecutable(required(m_tools.bundle.pathForResource("creator")));
    creator->setArguments(arguments);
    // Ctrl+C in a terminal ends the application, not the encoder.
    creator->setSession(Process::Session::Own);
    creator->passDescriptor(CommitToken::variable, token.descriptor());
    const auto standardError = std::make_shared<Pipe>();
    creator->setStandardError(standardError);
    standardError->fileHandleForReading()->setReadabilityHandler(
        [self](FileHandle& fileHandle) { self->creatorOutputReceived(fileHandle); });
    creator->launch(); // the error is ignored: the probe of the output detects it
    globalProcess.store(creator);
    m_mainQueue->async([self] { required(self->m_outlets.progressCancel).setEnabled(true); });
    creator->waitUntilExit();
    m_mainQueue->async([self, outputPath] { self->finishCreatorRun(outputPath); });
}

void AppDelegate::creatorOutputReceived(FileHandle& fileHandle)
{
    const auto elapsed = elapsedSecondsFromChunk(fileHandle.availableData());
    if (!elapsed)
        return;
    const auto probe = globalFP.load();
    const double percent = percentOf(*elapsed, required(probe).duration);
    m_mainQueue->async([self = shared_from_this(), percent] { self->updateProgress(percent); });
}

void AppDelegate::updateProgress(double percent)
{
    printLine(percentLine(percent));
    QProgressBar& bar = required(m_outlets.progressBar);
    setProgress(bar, percent);
    m_texts.setProgress(bar.value());
}

void AppDelegate::finishCreatorRun(const std::string& outputPath)
{
    hideProgressSheet();
    showResultAlert(std::make_shared<const FileProbe>(outputPath, m_tools));
    m_outputPlace.reset(); // an open folder prevents that its file system is unmounted
}

void AppDelegate::showProgressSheet()
{
    setDeterminate(required(m_outlets.progressBar));
    required(m_outlets.progressTitle).setText(QStringLiteral("Creating Video..."));
    required(m_outlets.progressCancel).show();
    required(m_outlets.progressCancel).setEnabled(false); // until globalProcess is set
    required(m_outlets.progressWindow).setWindowTitle(savingTitle());
    beginSheet(m_outlets.progressWindow);
    m_texts.beginProgress();
    m_blockerBeforeSheet.reset();
}

void AppDelegate::hideProgressSheet()
{
    setDeterminate(required(m_outlets.progressBar));
    required(m_outlets.progressCancel).hide();
    m_texts.endProgress();
    endSheet(m_outlets.progressWindow);
}

void AppDelegate::closeBTNInsideProgressWindowClicked()
{
    const auto process = globalProcess.load();
    required(process).terminate();
    if (required(m_commitToken).take())
        isProcessCancelledByUser = true;
    else // too late: the encoder replaces the older file, which cannot be undone
        required(m_outlets.progressCancel).setEnabled(false);
}

std::string AppDelegate::placeOf(const FileProbe& outputProbe) const
{
    const std::string& path = required(outputProbe.fileFullPath);
    return m_outputPlace && m_outputPlace->originalPath() == path ? m_outputPlace->path() : path;
}

bool AppDelegate::isUnchangedByRun(const FileProbe& outputProbe) const
{
    return outputProbe.fileFullPath && m_outputBeforeRun == FileFingerprint(placeOf(outputProbe));
}

void AppDelegate::showResultAlert(const std::shared_ptr<const FileProbe>& outputProbe)
{
    // A file that the run did not change is not its result.
    const bool isUnchanged = isUnchangedByRun(*outputProbe);
    if (required(isProcessCancelledByUser)) {
        std::error_code ignored;
        const std::string place = placeOf(*outputProbe);
        if (!isUnchanged)
            std::filesystem::remove_all(place, ignored);
        return;
    }
    // The probe has read another file if another folder is at the output's path now.
    const bool isElsewhere = m_outputPlace && !m_outputPlace->isAtOriginalPath();
    if (isUnchanged || isElsewhere || !outputProbe->isValidMediaFile) {
        failureAlert().beginSheetModal(required(m_outlets.window), required(m_outlets.sheets));
        return;
    }
    successAlert(m_orientation)
        .beginSheetModal(required(m_outlets.window), required(m_outlets.sheets),
            [this, outputProbe](int response) { resultAlertButtonClicked(response, *outputProbe); });
}

void AppDelegate::resultAlertButtonClicked(int response, const FileProbe& outputProbe)
{
    if (response == Alert::secondButtonResponse)
        activateFileViewerSelecting(required(outputProbe.fileFullURL));
    else if (response == Alert::thirdButtonResponse)
        openFileWithApplication(
            FileURL(required(outputProbe.fileFullPath)), QStringLiteral("QuickTime Player"));
}

} // namespace tarnwell
