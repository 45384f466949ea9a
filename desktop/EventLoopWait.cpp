// SPDX-License-Identifier: MIT
#include "desktop/EventLoopWait.h"

#include "desktop/Doorbell.h"
#include "desktop/InputBlocker.h"

#include <QEventLoop>

#include <system_error>
#include <thread>

namespace tarnwell
{

namespace
{

/// No thread where the system has none to give.
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
    const Doorbell finished([&loop] { loop.quit(); });
    if (!finished.isWorking()) {
        blockingCall();
        return;
    }
    const InputBlocker blocker;
    std::thread helper = startThread([&] {
        blockingCall();
        finished.ring();
    });
    if (!helper.joinable()) {
        blockingCall();
        return;
    }
    loop.exec();
    helper.join();
}

} // namespace tarnwell
