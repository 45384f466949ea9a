// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwell::test
{

/// The bytes of the file; empty if it does not exist.
std::string contentsOf(const std::string& path);

/// Creates or replaces the file.
void writeFile(const std::string& path, const std::string& contents);

bool exists(const std::string& path);

/// Blocks until the file exists; fails after the longest wait. Not for the main thread, which must process
/// events.
testing::AssertionResult waitForFile(const std::string& path);

/// The names in the folder, sorted.
std::vector<std::string> namesIn(const std::string& folder);

/// The arguments that the fake tool's command `record` has written.
std::vector<std::string> recordedArguments(const std::string& path);

} // namespace tarnwell::test
