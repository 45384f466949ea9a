// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace tarnwell
{

/// Runs a blocking call on a helper thread and returns when the call has returned. Meanwhile the main
/// thread's event loop paints the windows and drops all input. Main thread only. If no thread can be started,
/// the call runs on the main thread.
void waitInEventLoop(const std::function<void()>& blockingCall);

} // namespace tarnwell
