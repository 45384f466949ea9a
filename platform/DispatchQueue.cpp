// SPDX-License-Identifier: MIT
#include "platform/DispatchQueue.h"

#include "platform/FatalError.h"

#include <system_error>
#include <thread>
#include <utility>

namespace tarnwell
{

DispatchQueue::DispatchQueue(Work wake)
    : m_wake(std::move(wake))
{
}

void DispatchQueue::async(Work work)
{
    const std::lock_guard lock(m_mutex);
    if (!m_wake)
        return;
    m_pending.push_back(std::move(work));
    if (m_pending.size() == 1)
        m_wake();
}

void DispatchQueue::drain()
{
    if (std::exchange(m_isDraining, true))
        return;
    for (auto left = pendingCount(); left > 0; --left)
        takeNext()();
    m_isDraining = false;
    wakeForRemaining();
}

std::size_t DispatchQueue::pendingCount()
{
    const std::lock_guard lock(m_mutex);
    return m_pending.size();
}

DispatchQueue::Work DispatchQueue::takeNext()
{
    const std::lock_guard lock(m_mutex);
    if (m_pending.empty()) // an earlier piece closed the queue
        return [] {};
    Work work = std::move(m_pending.front());
    m_pending.pop_front();
    return work;
}

void DispatchQueue::wakeForRemaining()
{
    const std::lock_guard lock(m_mutex);
    if (!m_pending.empty() && m_wake)
        m_wake();
}

void DispatchQueue::close()
{
    std::deque<Work> dropped;
    const std::lock_guard lock(m_mutex);
    dropped.swap(m_pending);
    m_wake = nullptr;
}

void asyncUserInitiated(DispatchQueue::Work work)
{
    try {
        std::thread(std::move(work)).detach();
    } catch (const std::system_error&) {
        fatalError(); // the caller has no way to notice that the work never runs
    }
}

} // namespace tarnwell
