// SPDX-License-Identifier: MIT
#include "desktop/AttentiveWait.h"

#include "desktop/Doorbell.h"
#include "desktop/InputGate.h"

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

void waitAttentively(const std::function<void()>& blockingCall)
{
    QEventLoop loop;
    const Doorbell finished([&loop] { loop.quit(); });
    if (!finished.isWorking()) {
        blockingCall();
        return;
    }
    const InputGate gate;
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
