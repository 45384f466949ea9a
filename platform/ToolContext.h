// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Bundle.h"

#include <functional>

namespace tarnwell
{

/// Calls a blocking function and returns after it has returned. Implementations choose the thread: on the
/// main thread the window is repainted meanwhile.
using BlockingWait = std::function<void(const std::function<void()>& blockingCall)>;

/// Calls the function on the calling thread.
inline void waitBlocking(const std::function<void()>& blockingCall)
{
    blockingCall();
}

/// The location of the application's tools and the way to wait for them.
struct ToolContext {
    Bundle bundle;
    BlockingWait wait = waitBlocking;
};

} // namespace tarnwell
