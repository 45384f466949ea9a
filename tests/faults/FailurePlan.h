// SPDX-License-Identifier: MIT
#pragma once

/// Counts a call of the function. Whether it has to fail, by the plan in TARNWELL_FAILS; see
/// failingCalls.cpp. `caller` is the return address of the call.
bool shouldFail(const char* call, const void* caller);

/// If the environment variable names a file, creates a file of that name with ".waiting" appended, and waits
/// until the named file exists.
void waitIfRequested(const char* variable);

/// Starts or stops counting calls. With TARNWELL_COUNT_ON_REQUEST in the environment, no call counts before
/// the first start.
extern "C" void countFailingCalls(bool count);
