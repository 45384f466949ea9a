// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/ImageView.h"

#include <optional>
#include <string>

class QMimeData;

namespace tarnwell
{

/// The notification that announces a dropped file, and its one key: the value is the file's FileURL. The
/// letters are the poster's and the observer's agreement.
inline constexpr const char* fileDroppedNotification = "FileAddedByDragAnadDrop";
inline constexpr const char* fileDroppedKey = "key";

/// The picture area, on which one file can be dropped. It announces the file with a notification and knows
/// nothing of what becomes of it; the picture that it shows is set from outside. Main thread.
class DragAndDropFileInNSImageView : public ImageView
{
    Q_OBJECT

public:
    /// For the interface file, which is the only way to make one.
    explicit DragAndDropFileInNSImageView(QWidget* parent = nullptr);
    /// Stops the program.
    [[noreturn]] explicit DragAndDropFileInNSImageView(const QRect& frame);

    /// The path of the last file that was dropped, raw bytes, whatever became of it; absent before the first.
    const std::optional<std::string>& filePath() const { return m_filePath; }

    /// Qt::CopyAction for a drag whose first file exists and is no folder, otherwise Qt::IgnoreAction.
    Qt::DropAction draggingEntered(const QMimeData& drag) const;

    /// Remembers the first file and announces it; false where the drag carries none. Returns when everybody
    /// who listens has dealt with it.
    bool performDragOperation(const QMimeData& drag);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    std::optional<std::string> m_filePath;
};

} // namespace tarnwell
