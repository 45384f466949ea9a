// SPDX-License-Identifier: MIT
#include "tests/desktop/OtherClient.h"

#include "tests/support/Waiting.h"

#include <cstdlib>
#include <memory>

namespace tarnwell::test
{

namespace
{

template <typename Reply>
std::unique_ptr<Reply, void (*)(void*)> owned(Reply* reply)
{
    return {reply, std::free};
}

constexpr std::uint32_t sentByPager = 2;
constexpr std::int16_t width = 120;
constexpr std::int16_t height = 80;

} // namespace

OtherClient::OtherClient()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_root = screen->root;
    m_window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_root, 0, 0, width, height, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    // A window manager that focuses the window under the pointer would focus the sheet.
    xcb_warp_pointer(m_connection, XCB_NONE, m_root, 0, 0, 0, 0, width / 2, height / 2);
    xcb_map_window(m_connection, m_window);
    xcb_flush(m_connection);
    waitFor("the keyboard focus of the other client", [this] {
        if (!hasKeyboard())
            requestKeyboard();
        return hasKeyboard();
    });
}

OtherClient::~OtherClient()
{
    xcb_disconnect(m_connection);
}

bool OtherClient::hasKeyboard() const
{
    const auto reply
        = owned(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return reply && reply->focus == m_window;
}

void OtherClient::requestClose(xcb_window_t window) const
{
    askWindowManager("_NET_CLOSE_WINDOW", window, XCB_CURRENT_TIME, sentByPager);
}

void OtherClient::requestKeyboard()
{
    askWindowManager("_NET_ACTIVE_WINDOW", m_window, sentByPager, XCB_CURRENT_TIME);
}

void OtherClient::askWindowManager(
    std::string_view request, xcb_window_t window, std::uint32_t first, std::uint32_t second) const
{
    const auto atom = owned(xcb_intern_atom_reply(m_connection,
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(request.size()), request.data()),
        nullptr));
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE};
    message.data.data32[0] = first;
    message.data.data32[1] = second;
    xcb_send_event(m_connection, 0, m_root,
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection);
}

} // namespace tarnwell::test
