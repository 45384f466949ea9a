// SPDX-License-Identifier: MIT
#include "platform/ToolContext.h"

namespace tarnwell
{

void waitBlocking(const std::function<void()>& blockingCall)
{
    blockingCall();
}

} // namespace tarnwell
