// SPDX-License-Identifier: MIT
#include "desktop/EventLoopWait.h"

#include "desktop/InputBlocker.h"

#include <QEventLoop>
#include <QMetaObject>

#include <system_error>
#include <thread>

namespace tarnwell
{

namespace
{

/// Not joinable if the system cannot start a thread.
std::thread startThread(std::function<void()> work)
{
    try {
        return std::thread(std::move(work));
    } catch (const std::system_error&) {
        return {};
    }
}

} // namespace

void waitInEventLoop(const std::function<void()>& blockingCall)
{
    QEventLoop loop;
    const InputBlocker blocker;
    std::thread helper = startThread([&] {
        blockingCall();
        // Queued, because a call of quit() before exec() has no effect. By name, because Qt then allocates
        // and frees the call itself; the thread sanitizer does not see the lock that protects a functor.
        QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
    if (!helper.joinable()) {
        blockingCall();
        return;
    }
    loop.exec();
    helper.join();
}

} // namespace tarnwell
