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

std::optional<std::string> firstOf(const std::optional<FileNameList>& names)
{
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
    if (isFileTransfer(drag)) // its files are not known before the drop
        return Qt::CopyAction;
    const auto file = firstOf(fileNameList(drag));
    return file && isExistingFile(*file) ? Qt::CopyAction : Qt::IgnoreAction;
}

bool DragAndDropFileInNSImageView::performDragOperation(const QMimeData& drag)
{
    const auto names = isFileTransfer(drag) ? retrieveFileNameList(drag) : fileNameList(drag);
    if (!names && isFileTransfer(drag))
        Q_EMIT transferFailed();
    const auto file = firstOf(names);
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
    event->setAccepted(isFileTransfer(*event->mimeData()) || firstOf(fileNameList(*event->mimeData())));
    if (!event->isAccepted())
        return;
    // The drag's source program blocks until this event is answered, so the file is handled after it. Until
    // then no other action may begin.
    const std::shared_ptr<QMimeData> drag = copyOfFileNames(*event->mimeData());
    auto perform = [this, drag, blocker = std::make_shared<InputBlocker>()]() mutable {
        blocker.reset();
        performDragOperation(*drag);
    };
    QMetaObject::invokeMethod(this, std::move(perform), Qt::QueuedConnection);
}

} // namespace tarnwell
