// SPDX-License-Identifier: MIT
#include "desktop/X11Activation.h"

#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace tarnwell
{

namespace
{

constexpr std::uint32_t sentByApplication = 1;

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename Reply>
std::unique_ptr<Reply, FreeReply> owned(Reply* reply)
{
    return std::unique_ptr<Reply, FreeReply>(reply);
}

xcb_atom_t atomOf(xcb_connection_t* connection, std::string_view name)
{
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t rootOf(xcb_connection_t* connection, xcb_window_t window)
{
    const auto reply
        = owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    return reply ? reply->root : xcb_window_t{XCB_WINDOW_NONE};
}

xcb_client_message_event_t messageOf(xcb_window_t window, xcb_atom_t type, std::uint8_t format)
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = format;
    message.window = window;
    message.type = type;
    return message;
}

void send(xcb_connection_t* connection, xcb_window_t root, std::uint32_t receivers,
    const xcb_client_message_event_t& message)
{
    xcb_send_event(connection, 0, root, receivers, reinterpret_cast<const char*>(&message));
}

void askForKeyboard(
    xcb_connection_t* connection, xcb_window_t root, xcb_window_t window, std::uint32_t userTime)
{
    auto message = messageOf(window, atomOf(connection, "_NET_ACTIVE_WINDOW"), 32);
    message.data.data32[0] = sentByApplication;
    message.data.data32[1] = userTime;
    send(
        connection, root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, message);
}

/// A value of a startup message, quoted and escaped.
QByteArray quoted(const QString& value)
{
    QByteArray text = value.toUtf8();
    text.replace('\\', "\\\\");
    text.replace('"', "\\\"");
    return '"' + text + '"';
}

/// Sends the message with its final NUL in events of 20 bytes each, as the startup notification protocol
/// requires.
void endStartupNotice(
    xcb_connection_t* connection, xcb_window_t root, xcb_window_t window, const QString& startupId)
{
    const QByteArray text = "remove: ID=" + quoted(startupId);
    const std::string_view whole(text.constData(), static_cast<std::size_t>(text.size()) + 1);
    auto message = messageOf(window, atomOf(connection, "_NET_STARTUP_INFO_BEGIN"), 8);
    const xcb_atom_t continuation = atomOf(connection, "_NET_STARTUP_INFO");
    constexpr std::size_t pieceSize = sizeof message.data.data8;
    for (std::size_t sent = 0; sent < whole.size(); sent += pieceSize) {
        const std::string_view piece = whole.substr(sent, pieceSize);
        std::fill(std::begin(message.data.data8), std::end(message.data.data8), std::uint8_t{0});
        std::copy(piece.begin(), piece.end(), std::begin(message.data.data8));
        send(connection, root, XCB_EVENT_MASK_PROPERTY_CHANGE, message);
        message.type = continuation;
    }
}

} // namespace

std::optional<std::uint32_t> userTimeOf(const QString& startupId)
{
    const QString mark = QStringLiteral("_TIME");
    const auto place = startupId.lastIndexOf(mark);
    bool isNumber = false;
    const quint32 time = startupId.mid(place + mark.size()).toUInt(&isNumber);
    return place >= 0 && isNumber && time != 0 ? std::optional<std::uint32_t>(time) : std::nullopt;
}

bool activateOnX11(const QWindow& window, const QString& startupId)
{
    const auto* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (server == nullptr)
        return false;
    xcb_connection_t* connection = server->connection();
    const auto id = static_cast<xcb_window_t>(window.winId());
    const xcb_window_t root = rootOf(connection, id);
    if (const auto userTime = userTimeOf(startupId))
        askForKeyboard(connection, root, id, *userTime);
    endStartupNotice(connection, root, id, startupId);
    xcb_flush(connection);
    return true;
}

std::uint32_t x11Atom(std::string_view name)
{
    const auto* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return server != nullptr ? atomOf(server->connection(), name) : 0;
}

bool hasX11Keyboard()
{
    const auto* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (server == nullptr)
        return false;
    xcb_connection_t* connection = server->connection();
    const auto reply = owned(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    const auto windows = QGuiApplication::topLevelWindows();
    return reply
        && std::any_of(windows.begin(), windows.end(), [owner = reply->focus](const QWindow* window) {
               return window->handle() != nullptr && window->winId() == owner;
           });
}

} // namespace tarnwell
