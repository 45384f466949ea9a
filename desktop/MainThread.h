// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Doorbell.h"
#include "platform/DispatchQueue.h"

#include <memory>

namespace tarnwell
{

/// Connects a dispatch queue to the main thread's event loop. Made and destroyed on the main thread; the
/// queue may outlive it and drops what comes then.
class MainThread
{
public:
    MainThread();
    ~MainThread();
    MainThread(const MainThread&) = delete;
    MainThread& operator=(const MainThread&) = delete;

    const std::shared_ptr<DispatchQueue>& queue() const { return m_queue; }

private:
    Doorbell m_doorbell;
    std::shared_ptr<DispatchQueue> m_queue;
};

} // namespace tarnwell
