// SPDX-License-Identifier: MIT
#include "tests/support/XWindows.h"

#include "tests/support/Waiting.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

namespace tarnwell::test
{

namespace
{

template <typename Reply>
std::unique_ptr<Reply, void (*)(void*)> owned(Reply* reply)
{
    return {reply, std::free};
}

xcb_window_t root()
{
    return xcb_setup_roots_iterator(xcb_get_setup(xConnection())).data->root;
}

xcb_atom_t atom(const std::string& name)
{
    static std::map<std::string, xcb_atom_t> known;
    const auto found = known.find(name);
    if (found != known.end())
        return found->second;
    const auto reply = owned(xcb_intern_atom_reply(xConnection(),
        xcb_intern_atom(xConnection(), 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    return known[name] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The bytes of the property; empty if the window or the property does not exist.
std::string property(xcb_window_t window, const std::string& name)
{
    constexpr std::uint32_t longest = 1024; // units of four bytes
    const auto reply = owned(xcb_get_property_reply(xConnection(),
        xcb_get_property(xConnection(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longest),
        nullptr));
    if (!reply)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<xcb_window_t> windowsIn(xcb_window_t window, const std::string& name)
{
    const std::string bytes = property(window, name);
    std::vector<xcb_window_t> windows(bytes.size() / sizeof(xcb_window_t));
    std::memcpy(windows.data(), bytes.data(), windows.size() * sizeof(xcb_window_t));
    return windows;
}

/// XCB_WINDOW_NONE if the window is the root window or does not exist.
xcb_window_t parentOf(xcb_window_t window)
{
    const auto reply
        = owned(xcb_query_tree_reply(xConnection(), xcb_query_tree(xConnection(), window), nullptr));
    return reply ? reply->parent : xcb_window_t{XCB_WINDOW_NONE};
}

bool isViewable(xcb_window_t window)
{
    const auto reply = owned(xcb_get_window_attributes_reply(
        xConnection(), xcb_get_window_attributes(xConnection(), window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

} // namespace

xcb_connection_t* xConnection()
{
    const auto* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (server == nullptr)
        failTest("this test needs an X server; scripts/virtual-desktop starts one");
    return server->connection();
}

xcb_window_t keyboardOwner()
{
    const auto reply
        = owned(xcb_get_input_focus_reply(xConnection(), xcb_get_input_focus(xConnection()), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
}

xcb_window_t activeWindow()
{
    const auto windows = windowsIn(root(), "_NET_ACTIVE_WINDOW");
    return windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front();
}

std::string titleAround(xcb_window_t window)
{
    std::string title;
    for (; title.empty() && window > XCB_INPUT_FOCUS_POINTER_ROOT; window = parentOf(window))
        title = property(window, "_NET_WM_NAME");
    return title;
}

std::string roleOf(xcb_window_t window)
{
    return property(window, "WM_WINDOW_ROLE");
}

int shownWindows(const std::string& title)
{
    const auto windows = windowsIn(root(), "_NET_CLIENT_LIST");
    return static_cast<int>(std::count_if(windows.begin(), windows.end(), [&](xcb_window_t window) {
        return isViewable(window) && property(window, "_NET_WM_NAME") == title;
    }));
}

} // namespace tarnwell::test
