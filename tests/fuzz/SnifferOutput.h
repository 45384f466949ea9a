// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// What the next description gets to read from sniffer. No tool is started: SnifferOutput.cpp stands in for
/// the processes, pipes, resources and diagnostic lines of platform/, which would take a thousand times as
/// long as the reading that is to be tried.
void setSnifferOutput(const std::string& output);

} // namespace tarnwell::test
