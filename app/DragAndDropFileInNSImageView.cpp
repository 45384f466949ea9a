// SPDX-License-Identifier: MIT
#include "app/DragAndDropFileInNSImageView.h"

#include "app/DroppedFiles.h"
#include "desktop/InputBlocker.h"
#include "platform/FatalError.h"
#include "platform/FileAttributes.h"
#include "platform/FileURL.h"
#include "platform/NotificationCenter.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>

#include <memory>
#include <utility>

namespace tarnwell
{

namespace
{

std::optional<std::string> draggedFile(const QMimeData& drag)
{
    const auto names = fileNameList(drag);
    return names ? firstFile(*names) : std::nullopt;
}

} // namespace

DragAndDropFileInNSImageView::DragAndDropFileInNSImageView(QWidget* parent)
    : ImageView(parent)
{
    setAcceptDrops(true);
}

DragAndDropFileInNSImageView::DragAndDropFileInNSImageView(const QRect& /*frame*/)
{
    fatalError();
}

Qt::DropAction DragAndDropFileInNSImageView::draggingEntered(const QMimeData& drag) const
{
    const auto file = draggedFile(drag);
    return file && isExistingFile(*file) ? Qt::CopyAction : Qt::IgnoreAction;
}

bool DragAndDropFileInNSImageView::performDragOperation(const QMimeData& drag)
{
    const auto file = draggedFile(drag);
    if (!file)
        return false;
    m_filePath = *file;
    NotificationCenter::defaultCenter().post(
        {fileDroppedNotification, nullptr, {{fileDroppedKey, FileURL(*file)}}});
    return true;
}

void DragAndDropFileInNSImageView::dragEnterEvent(QDragEnterEvent* event)
{
    event->setDropAction(draggingEntered(*event->mimeData()));
    event->setAccepted(event->dropAction() == Qt::CopyAction);
}

void DragAndDropFileInNSImageView::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(draggedFile(*event->mimeData()).has_value());
    if (!event->isAccepted())
        return;
    // The program from which the file comes waits for the answer, and must not wait for what is done with the
    // file. Until that begins nothing else may begin.
    const std::shared_ptr<QMimeData> drag = copyOfFileNames(*event->mimeData());
    auto perform = [this, drag, blocker = std::make_shared<InputBlocker>()]() mutable {
        blocker.reset();
        performDragOperation(*drag);
    };
    QMetaObject::invokeMethod(this, std::move(perform), Qt::QueuedConnection);
}

} // namespace tarnwell
