// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <utility>

namespace tarnwell
{

/// A value that one thread replaces while another reads it: both sides get copies, whole ones.
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
        std::swap(m_value, value); // the earlier value is destroyed after the lock is given back
    }

private:
    mutable std::mutex m_mutex;
    Value m_value{};
};

} // namespace tarnwell
