// SPDX-License-Identifier: MIT
#pragma once

#include "app/Outlets.h"
#include "app/StillFrame.h"
#include "orientation/OrientationState.h"
#include "platform/FileURL.h"
#include "platform/NotificationCenter.h"
#include "platform/Synchronized.h"
#include "platform/ToolContext.h"

#include <QImage>
#include <QObject>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarnwell
{

class DispatchQueue;
class FileHandle;
class FileProbe;
class InputBlocker;
class Process;

/// The one controller: holds what is known of the one open video and receives every action of the user. An
/// action takes values from the fields, asks a plain function what follows, and does it. Main thread, unless
/// said otherwise. A running export keeps it alive, hence the shared ownership.
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
    void analyzeFile(const FileURL& url);
    QImage extractPosterFrame(const FileProbe& probe);
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
    void startCreatorRun(const std::string& outputPath, const std::vector<std::string>& arguments);
    void closeBTNInsideProgressWindowClicked();
    void showResultAlert(const std::shared_ptr<const FileProbe>& outputProbe);
    void resultAlertButtonClicked(int response, const FileProbe& outputProbe);

private:
    void registerForDropNotification();
    void setEditingControlsEnabled(bool enabled);
    void openFilePanel();
    void showAnalysisProgress();
    void hideAnalysisProgress();
    void acceptFile(const FileProbe& probe);
    void refuseFile(const std::string& messageText, const std::string& informativeText);
    void presentSavePanel();
    void saveTo(const std::string& outputPath);
    std::vector<std::string> fixFlagArguments(const std::string& inputPath, const std::string& outputPath);
    std::vector<std::string> transcodeArguments(const std::string& inputPath, const std::string& outputPath);
    /// On a background thread of the run's own, until the encoder has exited.
    void runCreator(const std::string& outputPath, const std::vector<std::string>& arguments);
    /// On the thread of the pipe, once a chunk.
    void creatorOutputReceived(FileHandle& fileHandle);
    void updateProgress(double percent);
    void finishCreatorRun(const std::string& outputPath);
    void showProgressSheet();
    void hideProgressSheet();

    Outlets m_outlets;
    ToolContext m_tools;
    std::shared_ptr<DispatchQueue> m_mainQueue;
    NotificationCenter::Observation m_dropObservation;

    /// The file that was analysed last, accepted or not. Threads of an export read it.
    Synchronized<std::shared_ptr<const FileProbe>> globalFP;
    /// The encoder of the current or last export. The run's thread sets it.
    Synchronized<std::shared_ptr<Process>> globalProcess;
    std::optional<bool> isProcessCancelledByUser; // absent before the first export
    std::optional<QImage> currentImage; // the still of the open video, as extracted
    DecodedPicture m_lastStill; // the one that was extracted last
    OrientationState m_orientation;
    std::unique_ptr<InputBlocker> m_blockerBeforeSheet; // from an export's start until its sheet is up
};

} // namespace tarnwell
