// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tarnwell::test
{

/// The token that the application passes to creator; see tools/Cancel.h. Children inherit it.
class TestToken
{
public:
    /// `isTaken`: the application has taken it for a cancel.
    explicit TestToken(bool isTaken = false)
        : m_descriptor(::eventfd(isTaken ? 0 : 1, EFD_SEMAPHORE | EFD_NONBLOCK))
    {
    }
    ~TestToken() { ::close(m_descriptor); }
    TestToken(const TestToken&) = delete;
    TestToken& operator=(const TestToken&) = delete;

    /// The entry of the environment.
    std::string variable() const { return "TARNWELL_COMMIT_TOKEN=" + std::to_string(m_descriptor); }

    /// False if it has been taken before, for example by creator.
    bool take() const
    {
        eventfd_t value = 0;
        return ::eventfd_read(m_descriptor, &value) == 0;
    }

private:
    int m_descriptor;
};

} // namespace tarnwell::test
