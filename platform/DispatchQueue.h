// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace tarnwell
{

/// A first-in, first-out queue of work for the main thread. Any thread submits. Work runs one piece at a
/// time: a piece that runs a nested event loop is finished before the next one begins.
class DispatchQueue
{
public:
    using Work = std::function<void()>;

    /// `wake` is called when work enters an empty queue, on the submitting thread and with the queue locked.
    /// It must cause a call of drain on the main thread and must not use the queue itself.
    explicit DispatchQueue(Work wake);

    /// Any thread. After close the work is dropped.
    void async(Work work);

    /// Main thread. Runs the work that is queued at the call; work submitted meanwhile waits for the next
    /// call, so that a flood of work does not keep the event loop from painting.
    void drain();

    /// Drops the queued work and never calls `wake` again. For the end of the program, while other threads
    /// may still submit.
    void close();

private:
    std::size_t pendingCount();
    Work takeNext();
    void wakeForRemaining();

    std::mutex m_mutex;
    std::deque<Work> m_pending;
    Work m_wake;
    bool m_isDraining = false;
};

/// Runs `work` on a detached thread. The end of the program does not wait for it.
void asyncUserInitiated(DispatchQueue::Work work);

} // namespace tarnwell
