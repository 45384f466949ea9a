// SPDX-License-Identifier: MIT
#include "desktop/MainThread.h"

#include <QCoreApplication>
#include <QEvent>

namespace tarnwell
{

MainThread::MainThread()
    : m_queue(std::make_shared<DispatchQueue>(
        [this] { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }))
{
}

MainThread::~MainThread()
{
    m_queue->close();
}

bool MainThread::event(QEvent* event)
{
    if (event->type() != QEvent::User)
        return QObject::event(event);
    m_queue->drain();
    return true;
}

} // namespace tarnwell
