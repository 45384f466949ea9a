// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// Sets the output of sniffer that the next FileProbe reads. No tool is started: SnifferOutput.cpp defines
/// fakes of the classes Process, Pipe, FileHandle and Bundle of platform/, because starting a process would
/// take a thousand times as long as the parsing under test.
void setSnifferOutput(const std::string& output);

} // namespace tarnwell::test
