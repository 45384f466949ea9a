// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tarnwell::test
{

using Words = std::vector<std::string>;

// The application's argument lists for the tools.

Words probeCommand(const std::string& path);
Words stillCommand(const std::string& position, const std::string& input, const std::string& output);
Words fixFlagCommand(
    const std::string& input, const std::string& output, const std::string& tag = "rotate=90");
/// Adds no filters if `filters` is empty.
Words transcodeCommand(
    const std::string& input, const std::string& output, const std::string& filters = "transpose=2");

/// The words of `first`, then those of `second`.
Words joined(Words first, const Words& second);

} // namespace tarnwell::test
