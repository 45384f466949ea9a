// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace tarnwell
{

/// Work that any thread hands to the main thread, done there one piece after another in the order of its
/// submission. A piece that waits in an event loop of its own is finished before the next one begins.
class DispatchQueue
{
public:
    using Work = std::function<void()>;

    /// `wake` is called on the submitting thread, whenever work comes to an empty queue; it must bring about
    /// a call of drain on the main thread and must not call back itself.
    explicit DispatchQueue(Work wake);

    /// Any thread. Work that comes after close is dropped.
    void async(Work work);

    /// Main thread: does the work that is there.
    void drain();

    /// Drops what is left and never calls `wake` again. For the end of the program, when submitters may live
    /// on.
    void close();

private:
    std::size_t pendingCount();
    Work takeNext();
    void wakeForTheRest();

    std::mutex m_mutex;
    std::deque<Work> m_pending;
    Work m_wake;
    bool m_isDraining = false;
};

/// Runs `work` on a background thread of its own, which nothing waits for, not even the end of the program.
void asyncUserInitiated(DispatchQueue::Work work);

} // namespace tarnwell
