// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Bundle.h"

#include <functional>

namespace tarnwell
{

/// Runs a call that blocks to its end and returns only then. What becomes of the calling thread meanwhile is
/// the implementation's affair: the main thread keeps its windows painted, others simply block.
using BlockingWait = std::function<void(const std::function<void()>& blockingCall)>;

/// Makes the call on the calling thread.
void waitBlocking(const std::function<void()>& blockingCall);

/// What it takes to run one of the application's tools: where they stand and how to wait for them.
struct ToolContext {
    Bundle bundle;
    BlockingWait wait = waitBlocking;
};

} // namespace tarnwell
