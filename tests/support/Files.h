// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwell::test
{

/// The bytes of the file; empty where there is none.
std::string contentsOf(const std::string& path);

/// Makes or replaces the file.
void writeFile(const std::string& path, const std::string& contents);

bool exists(const std::string& path);

/// Blocks until there is a file at the path; fails after the longest wait. For threads other than the main
/// one, which must process events.
testing::AssertionResult waitForFile(const std::string& path);

/// The names in the folder, sorted.
std::vector<std::string> namesIn(const std::string& folder);

/// The arguments that a fake tool wrote down with its command `record`.
std::vector<std::string> recordedArguments(const std::string& path);

} // namespace tarnwell::test
