// SPDX-License-Identifier: MIT
#pragma once

#include "platform/DispatchQueue.h"

#include <QObject>

#include <memory>

namespace tarnwell
{

/// Drains a dispatch queue in the main thread's event loop. Created and destroyed on the main thread. The
/// queue may outlive this object: threads that still hold it submit to a closed queue, which drops the work.
class MainQueue : public QObject
{
    Q_OBJECT

public:
    MainQueue();
    ~MainQueue() override;

    const std::shared_ptr<DispatchQueue>& queue() const { return m_queue; }

    bool event(QEvent* event) override;

private:
    std::shared_ptr<DispatchQueue> m_queue;
};

} // namespace tarnwell
