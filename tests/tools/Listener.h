// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// A server on the loopback interface that closes every connection at once.
class Listener
{
public:
    Listener();
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    std::string port() const { return std::to_string(m_port); }

    /// Whether there was a connection since the last call of this function.
    bool wasCalled() const;

    /// Waits for a connection. False after 30 seconds without one.
    bool isCalled() const;

private:
    int m_socket = -1;
    int m_port = 0;
};

} // namespace tarnwell::test
