// SPDX-License-Identifier: MIT
#include "tests/support/EventCounter.h"

#include <QDesktopServices>

namespace tarnwell::test
{

EventCounter::EventCounter(QObject& object, QEvent::Type type)
    : m_type(type)
{
    object.installEventFilter(this);
}

bool EventCounter::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() == m_type)
        ++m_count;
    return false;
}

UrlCatcher::UrlCatcher()
{
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open");
}

UrlCatcher::~UrlCatcher()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
}

} // namespace tarnwell::test
