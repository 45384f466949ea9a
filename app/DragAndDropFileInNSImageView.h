// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/ImageView.h"

#include <optional>
#include <string>

class QMimeData;

namespace tarnwell
{

/// The notification that announces a dropped file, and the only key of its user information, whose value is
/// the file's FileURL. The spelling "Anad" is intended.
inline constexpr const char* fileDroppedNotification = "FileAddedByDragAnadDrop";
inline constexpr const char* fileDroppedKey = "key";

/// The picture area, a drop target for one file. It posts a notification for a dropped file and does not
/// handle the file itself. Main thread.
class DragAndDropFileInNSImageView : public ImageView
{
    Q_OBJECT

public:
    /// Used by the code that uic generates from the interface file.
    explicit DragAndDropFileInNSImageView(QWidget* parent = nullptr);
    /// Stops the program.
    [[noreturn]] explicit DragAndDropFileInNSImageView(const QRect& frame);

    /// The path of the last dropped file, raw bytes, accepted or not; absent before the first drop.
    const std::optional<std::string>& filePath() const { return m_filePath; }

    /// Qt::CopyAction if the first dragged file exists and is no folder, or if the files are known only after
    /// the drop; otherwise Qt::IgnoreAction.
    Qt::DropAction draggingEntered(const QMimeData& drag) const;

    /// Stores the path of the first file and posts the notification; returns after all observers have handled
    /// it. False if the drag has no file.
    bool performDragOperation(const QMimeData& drag);

Q_SIGNALS:
    /// The portal did not pass on the dropped files.
    void transferFailed();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    std::optional<std::string> m_filePath;
};

} // namespace tarnwell
