// SPDX-License-Identifier: MIT
#include "desktop/MainQueue.h"

#include <QCoreApplication>
#include <QEvent>

namespace tarnwell
{

namespace
{

QEvent::Type drainEventType()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

} // namespace

// A posted event and not a queued functor call: Qt allocates, reads and frees a plain event itself, so the
// thread sanitizer, which does not see the locks inside Qt, has nothing to report. The work itself passes
// through the queue's mutex.
MainQueue::MainQueue()
    : m_queue(std::make_shared<DispatchQueue>(
        [this, type = drainEventType()] { QCoreApplication::postEvent(this, new QEvent(type)); }))
{
}

// After close no thread posts an event to this object any more, and ~QObject removes the posted ones.
MainQueue::~MainQueue()
{
    m_queue->close();
}

bool MainQueue::event(QEvent* event)
{
    if (event->type() != drainEventType())
        return QObject::event(event);
    m_queue->drain();
    return true;
}

} // namespace tarnwell
