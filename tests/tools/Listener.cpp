// SPDX-License-Identifier: MIT
#include "tests/tools/Listener.h"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tarnwell::test
{

Listener::Listener()
    : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(m_socket, 8), 0);
    socklen_t size = sizeof address;
    EXPECT_EQ(::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size), 0);
    m_port = ntohs(address.sin_port);
}

Listener::~Listener()
{
    ::close(m_socket);
}

bool Listener::wasCalled() const
{
    const int caller = ::accept(m_socket, nullptr, nullptr);
    if (caller >= 0)
        ::close(caller);
    return caller >= 0;
}

bool Listener::isCalled() const
{
    constexpr int longest = 30000; // milliseconds
    pollfd waiting = {m_socket, POLLIN, 0};
    return ::poll(&waiting, 1, longest) == 1 && wasCalled();
}

} // namespace tarnwell::test
