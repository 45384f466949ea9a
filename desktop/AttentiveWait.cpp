// SPDX-License-Identifier: MIT
#include "desktop/AttentiveWait.h"

#include "desktop/Doorbell.h"
#include "desktop/InputGate.h"

#include <QEventLoop>

#include <thread>

namespace tarnwell
{

void waitAttentively(const std::function<void()>& blockingCall)
{
    QEventLoop loop;
    const Doorbell finished([&loop] { loop.quit(); });
    if (!finished.isWorking()) {
        blockingCall();
        return;
    }
    const InputGate gate;
    std::thread helper([&] {
        blockingCall();
        finished.ring();
    });
    loop.exec();
    helper.join();
}

} // namespace tarnwell
