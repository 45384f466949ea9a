// SPDX-License-Identifier: MIT
#pragma once

#include "app/Outlets.h"
#include "app/StillFrame.h"
#include "app/VideoTexts.h"
#include "desktop/PanelFolder.h"
#include "export/ExportPlan.h"
#include "orientation/OrientationState.h"
#include "platform/FileFingerprint.h"
#include "platform/FileURL.h"
#include "platform/HeldPlace.h"
#include "platform/NotificationCenter.h"
#include "platform/Synchronized.h"
#include "platform/ToolContext.h"

#include <QImage>
#include <QObject>

#include <memory>
#include <optional>
#include <string>

namespace tarnwell
{

class CommitToken;
class DispatchQueue;
class FileHandle;
class FileProbe;
class InputBlocker;
class Process;

/// The controller: holds the state of the open video and handles every user action. An action reads fields,
/// calls a function without side effects to decide, and carries out the decision. Main thread, unless a
/// comment names another. Shared ownership, because the threads of a running export keep it alive.
class AppDelegate : public QObject, public std::enable_shared_from_this<AppDelegate>
{
    Q_OBJECT

public:
    AppDelegate(Outlets outlets, ToolContext tools, std::shared_ptr<DispatchQueue> mainQueue);
    ~AppDelegate() override;

    // AppDelegate.cpp
    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    bool applicationShouldTerminateAfterLastWindowClosed();
    void helpBTNClicked();
    void okBTNInsideHelpWindowClicked();
    // AppDelegateOpen.cpp
    void openMenuBTNClicked();
    void openToolBarBTNClicked();
    void fileAddedByDragAndDrop(const Notification& notification);
    void dropFailed();
    void openFailed();
    void analyzeFile(const FileURL& url);
    QImage extractPosterFrame(const FileProbe& probe);
    /// For the end of the program: an export's threads can keep the controller and its folder alive.
    void removeStillFolder();
    // AppDelegateOrientation.cpp
    void leftRotateBTNClicked();
    void rightRotateBTNClicked();
    void vFlip();
    void hFlip();
    void resetBTNClicked();
    void updatePreview();
    // AppDelegateSave.cpp
    void saveMenuBTNClicked();
    void saveToolBarBTNClicked();
    // AppDelegateExport.cpp; paths are raw bytes
    void chooseExportMode(const std::string& inputPath, const std::string& outputPath);
    void exportModeChosen(int response, const std::string& inputPath, const std::string& outputPath);
    void startCreatorRun(const std::string& outputPath, const ArgumentList& arguments);
    void closeBTNInsideProgressWindowClicked();
    void showResultAlert(const std::shared_ptr<const FileProbe>& outputProbe);
    void resultAlertButtonClicked(int response, const FileProbe& outputProbe);

private:
    void registerForDropNotification();
    void setEditingControlsEnabled(bool enabled);
    void beginSheet(const QPointer<QDialog>& sheet);
    void endSheet(const QPointer<QDialog>& sheet);
    void openFilePanel();
    void showAnalysisProgress();
    void hideAnalysisProgress();
    void acceptFile(const FileProbe& probe);
    void refuseFile(const std::string& messageText, const std::string& informativeText);
    void presentSavePanel();
    void saveTo(const std::string& outputPath);
    /// If the file at the path is not the one that was opened, shows the alert that says so.
    bool refusesChangedInput(const std::string& inputPath);
    ArgumentList fixFlagArguments(const std::string& inputPath, const std::string& outputPath);
    ArgumentList transcodeArguments(const std::string& inputPath, const std::string& outputPath);
    /// Blocks its thread, one per run, until the encoder has exited.
    void runCreator(const std::string& outputPath, const ArgumentList& arguments, const CommitToken& token);
    /// Called on the pipe's thread, once per chunk.
    void creatorOutputReceived(FileHandle& fileHandle);
    void updateProgress(double percent);
    void finishCreatorRun(const std::string& outputPath);
    void showProgressSheet();
    void hideProgressSheet();
    /// The path of the output in the folder that was at the output's path when the run started.
    std::string placeOf(const FileProbe& outputProbe) const;
    bool isUnchangedByRun(const FileProbe& outputProbe) const;

    // The application's state. The documentation refers to these fields by name, so they have no prefix.

    /// The file that was analysed last, accepted or not. The threads of an export read it.
    Synchronized<std::shared_ptr<const FileProbe>> globalFP;
    /// The encoder of the current or last export, set by the thread of the run.
    Synchronized<std::shared_ptr<Process>> globalProcess;
    std::optional<bool> isProcessCancelledByUser; // absent before the first export
    std::optional<QImage> currentImage; // the still frame of the open video, as extracted

    // Everything else, with the usual prefix.

    OrientationState m_orientation; // positionState, vFlipState, hFlipState
    Outlets m_outlets;
    VideoTexts m_texts;
    ToolContext m_tools;
    std::shared_ptr<DispatchQueue> m_mainQueue;
    NotificationCenter::Observation m_dropObservation;
    StillFrameExtractor m_stillFrames;
    PanelFolder m_panelFolder;
    std::optional<FileFingerprint> m_inputWhenOpened; // absent before the first analysis
    std::shared_ptr<CommitToken> m_commitToken; // of the current or last export; null before the first
    std::optional<HeldPlace> m_outputPlace; // absent unless an export runs
    std::optional<FileFingerprint> m_outputBeforeRun; // absent before the first export
    std::unique_ptr<InputBlocker> m_blockerBeforeSheet; // from an export's start until its sheet is shown
};

} // namespace tarnwell
