// SPDX-License-Identifier: MIT
#pragma once

#include "platform/DispatchQueue.h"

#include <QObject>

#include <memory>

namespace tarnwell
{

/// Connects a dispatch queue to the main thread's event loop: one event wakes it whenever work has come. Made
/// and destroyed on the main thread; the queue may outlive it and drops what comes then.
class MainThread : public QObject
{
    Q_OBJECT

public:
    MainThread();
    ~MainThread() override;

    const std::shared_ptr<DispatchQueue>& queue() const { return m_queue; }

protected:
    bool event(QEvent* event) override;

private:
    std::shared_ptr<DispatchQueue> m_queue;
};

} // namespace tarnwell
