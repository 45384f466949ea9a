// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace tarnwell::test
{

/// The limit of every wait for the program under test. Only a defect makes a wait reach it.
inline constexpr std::chrono::seconds longestWait(60);

/// Restarts the time limit of this process. When the time is over, the process writes `message` to standard
/// error and ends by SIGALRM, even if all of its threads are blocked.
void startTimeLimit(std::chrono::seconds limit, const std::string& message);

void stopTimeLimit();

} // namespace tarnwell::test
