// SPDX-License-Identifier: MIT
#include "desktop/AttentiveWait.h"

#include "desktop/InputGate.h"

#include <QEventLoop>
#include <QMetaObject>

#include <thread>

namespace tarnwell
{

void waitAttentively(const std::function<void()>& blockingCall)
{
    const InputGate gate;
    QEventLoop loop;
    std::thread helper([&] {
        blockingCall();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    helper.join();
}

} // namespace tarnwell
