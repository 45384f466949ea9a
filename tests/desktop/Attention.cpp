// SPDX-License-Identifier: MIT
#include "tests/desktop/Attention.h"

#include "desktop/X11Activation.h"

#include <QGuiApplication>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>
#include <xcb/xcb.h>

namespace tarnwell::test
{

bool demandsAttention(const QWidget& widget)
{
    constexpr std::uint32_t longestList = 32;
    xcb_connection_t* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const auto cookie = xcb_get_property(server, 0, static_cast<xcb_window_t>(widget.window()->winId()),
        x11Atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, longestList);
    const std::unique_ptr<xcb_get_property_reply_t, void (*)(void*)> states(
        xcb_get_property_reply(server, cookie, nullptr), std::free);
    if (!states)
        return false;
    const std::span atoms(
        static_cast<const xcb_atom_t*>(xcb_get_property_value(states.get())), states->value_len);
    return std::find(atoms.begin(), atoms.end(), x11Atom("_NET_WM_STATE_DEMANDS_ATTENTION")) != atoms.end();
}

} // namespace tarnwell::test
