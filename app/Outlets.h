// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/ImageView.h"
#include "desktop/SheetQueue.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

namespace tarnwell
{

/// References to elements that the interface owns. A reference is null if it was never connected or if its
/// element was destroyed; using it then stops the program.
struct Outlets {
    QPointer<QWidget> window;
    QPointer<SheetQueue> sheets; // the queue of the window's sheets
    QPointer<ImageView> posterFrameIMGV;
    QPointer<QLabel> videoDetails; // the line below the picture
    QPointer<QAction> saveToolBarBTN;
    QPointer<QAction> rotateLeftBTN;
    QPointer<QAction> rotateRightBTN;
    QPointer<QAction> resetBTN;
    QPointer<QAction> flipVerticallyBTN;
    QPointer<QAction> flipHorizontallyBTN;
    QPointer<QDialog> progressWindow;
    QPointer<QLabel> progressTitle;
    QPointer<QProgressBar> progressBar;
    QPointer<QPushButton> progressCancel;
    QPointer<QDialog> helpWindow;
};

} // namespace tarnwell
