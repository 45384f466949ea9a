// SPDX-License-Identifier: MIT
#include "tests/desktop/RootWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace tarnwell::test
{

namespace
{

constexpr int eventTypeMask = 0x7f;
constexpr std::size_t pieceSize = 20;

} // namespace

RootWindow::RootWindow()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    EXPECT_EQ(xcb_connection_has_error(m_connection), 0);
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_root = screen.root;
    const std::uint32_t heard = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &heard);
    m_clock = xcb_generate_id(m_connection);
    const std::uint32_t ticks = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_clock, m_root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &ticks);
    receive();
}

RootWindow::~RootWindow()
{
    xcb_disconnect(m_connection);
}

std::uint32_t RootWindow::time()
{
    // Every change of a property is reported with the time, even one that appends nothing.
    xcb_change_property(
        m_connection, XCB_PROP_MODE_APPEND, m_clock, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, "");
    receive();
    return m_time;
}

std::vector<RootWindow::Activation> RootWindow::activations()
{
    receive();
    return m_activations;
}

std::vector<std::string> RootWindow::startupMessages()
{
    receive();
    return m_messages;
}

xcb_atom_t RootWindow::atom(const std::string& name)
{
    const auto cookie
        = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const std::unique_ptr<xcb_intern_atom_reply_t, void (*)(void*)> reply(
        xcb_intern_atom_reply(m_connection, cookie, nullptr), std::free);
    return reply->atom;
}

/// The reply to a request comes after all events that the server has sent before.
void RootWindow::receive()
{
    atom("WM_NAME");
    while (auto* event = xcb_poll_for_event(m_connection)) {
        take(*event);
        std::free(event);
    }
}

void RootWindow::take(const xcb_generic_event_t& event)
{
    if ((event.response_type & eventTypeMask) == XCB_PROPERTY_NOTIFY) {
        m_time = reinterpret_cast<const xcb_property_notify_event_t&>(event).time;
        return;
    }
    if ((event.response_type & eventTypeMask) != XCB_CLIENT_MESSAGE)
        return;
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    if (message.type == atom("_NET_ACTIVE_WINDOW")) {
        m_activations.push_back({message.window, message.data.data32[0], message.data.data32[1]});
    } else if (message.type == atom("_NET_STARTUP_INFO_BEGIN")) {
        m_unfinished.clear();
        takePiece(message.data.data8);
    } else if (message.type == atom("_NET_STARTUP_INFO")) {
        takePiece(message.data.data8);
    }
}

void RootWindow::takePiece(const std::uint8_t* piece)
{
    const auto* end = std::find(piece, piece + pieceSize, 0);
    m_unfinished.append(piece, end);
    if (end != piece + pieceSize)
        m_messages.push_back(m_unfinished);
}

} // namespace tarnwell::test
