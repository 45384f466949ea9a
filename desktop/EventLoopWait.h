// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace tarnwell
{

/// Makes a blocking call on a helper thread and returns when it has returned. Until then the main thread, the
/// only one that may call this, keeps the windows painted and takes no input.
void waitInEventLoop(const std::function<void()>& blockingCall);

} // namespace tarnwell
