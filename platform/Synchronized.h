// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <utility>

namespace tarnwell
{

/// A value protected by a mutex. load and store copy the value; any thread may call them.
template <typename Value>
class Synchronized
{
public:
    Value load() const
    {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

    void store(Value value)
    {
        const std::lock_guard lock(m_mutex);
        std::swap(m_value, value); // the parameter destroys the previous value after the unlock
    }

private:
    mutable std::mutex m_mutex;
    Value m_value{};
};

} // namespace tarnwell
