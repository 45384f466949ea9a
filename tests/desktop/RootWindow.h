// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace tarnwell::test
{

/// Receives the messages of programs to the window manager and the desktop, as another X client.
class RootWindow
{
public:
    struct Activation {
        xcb_window_t window;
        std::uint32_t source;
        std::uint32_t time;

        bool operator==(const Activation&) const = default;
    };

    RootWindow();
    ~RootWindow();
    RootWindow(const RootWindow&) = delete;
    RootWindow& operator=(const RootWindow&) = delete;

    /// The X server's time now, in milliseconds.
    std::uint32_t time();

    /// The requests to get the keyboard that have come so far.
    std::vector<Activation> activations();
    /// The whole startup messages that have come so far.
    std::vector<std::string> startupMessages();

private:
    xcb_atom_t atom(const std::string& name);
    void receive();
    void take(const xcb_generic_event_t& event);
    void takePiece(const std::uint8_t* piece);

    xcb_connection_t* m_connection;
    xcb_window_t m_root = 0;
    xcb_window_t m_clock = 0;
    std::vector<Activation> m_activations;
    std::vector<std::string> m_messages;
    std::string m_unfinished;
    std::uint32_t m_time = 0;
};

} // namespace tarnwell::test
