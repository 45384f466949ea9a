// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tarnwell
{

/// The probe tool's argument list for a JSON report on the file at `path` (raw bytes).
std::vector<std::string> probeArguments(const std::string& path);

} // namespace tarnwell
