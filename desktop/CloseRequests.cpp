// SPDX-License-Identifier: MIT
#include "desktop/CloseRequests.h"

#include "desktop/SheetQueue.h"
#include "desktop/X11Activation.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

#include <xcb/xcb.h>

namespace tarnwell
{

CloseRequests::CloseRequests(QWidget& window, const SheetQueue& sheets, std::function<void()> handler)
    : m_window(window)
    , m_sheets(sheets)
    , m_handler(std::move(handler))
    , m_protocols(x11Atom("WM_PROTOCOLS"))
    , m_deleteWindow(x11Atom("WM_DELETE_WINDOW"))
{
    m_window.installEventFilter(this);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

CloseRequests::~CloseRequests()
{
    QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool CloseRequests::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::Close || !m_sheets.isBusy())
        return false;
    event->ignore();
    m_handler();
    return true;
}

bool CloseRequests::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/)
{
    if (eventType != "xcb_generic_event_t" || m_window.windowHandle() == nullptr || !m_sheets.isBusy())
        return false;
    const auto& event = *static_cast<const xcb_client_message_event_t*>(message);
    constexpr std::uint8_t sentBit = 0x80; // set in events that another client has sent
    if ((event.response_type & ~sentBit) != XCB_CLIENT_MESSAGE || event.type != m_protocols
        || event.data.data32[0] != m_deleteWindow || event.window != m_window.windowHandle()->winId())
        return false;
    m_handler();
    return true;
}

} // namespace tarnwell
