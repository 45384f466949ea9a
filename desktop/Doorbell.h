// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>

#include <functional>

namespace tarnwell
{

/// Lets any thread have something done on the main thread, by way of a descriptor that the event loop
/// watches. Several rings before the loop looks count as one. Made and destroyed on the main thread.
class Doorbell
{
public:
    explicit Doorbell(std::function<void()> answer);
    ~Doorbell();
    Doorbell(const Doorbell&) = delete;
    Doorbell& operator=(const Doorbell&) = delete;

    /// False where the system had no descriptor left; then nothing can ring.
    bool isWorking() const { return m_descriptor >= 0; }

    /// Any thread.
    void ring() const;

private:
    void answerRing();

    std::function<void()> m_answer;
    int m_descriptor;
    QSocketNotifier m_notifier;
};

} // namespace tarnwell
