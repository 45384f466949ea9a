// SPDX-License-Identifier: MIT
#include "desktop/InputBlocker.h"

#include <QCoreApplication>
#include <QEvent>

namespace tarnwell
{

namespace
{

int activeBlockers = 0;

} // namespace

bool InputBlocker::isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::Close:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::InputMethod:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::NativeGesture:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::TabletMove:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchCancel:
    case QEvent::TouchEnd:
    case QEvent::TouchUpdate:
    case QEvent::Wheel:
        return true;
    default:
        return false;
    }
}

InputBlocker::InputBlocker()
{
    ++activeBlockers;
    QCoreApplication::instance()->installEventFilter(this);
}

InputBlocker::~InputBlocker()
{
    --activeBlockers;
}

bool InputBlocker::isActive()
{
    return activeBlockers > 0;
}

bool InputBlocker::exitUnlessActive()
{
    if (isActive())
        return false;
    // Not QCoreApplication::quit, which closes every window first: the progress sheet refuses to close.
    QCoreApplication::exit();
    return true;
}

bool InputBlocker::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (!isInput(event->type()))
        return false;
    event->ignore();
    return true;
}

} // namespace tarnwell
