// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace tarnwell::test
{

/// The limit of every wait for the program under test, which takes that long only when it is broken.
inline constexpr std::chrono::seconds longestWait(60);

/// Starts this process's only time limit anew. When the time is up, the process writes `message` to standard
/// error and ends by SIGALRM, even if all of its threads wait.
void startTimeLimit(std::chrono::seconds limit, const std::string& message);

void stopTimeLimit();

} // namespace tarnwell::test
