// SPDX-License-Identifier: MIT
#pragma once

#include "probe/JSON.h"

#include <map>
#include <string>
#include <vector>

namespace tarnwell
{

/// The twelve entries that describe a container, always all of them and in the same order, each with a "key"
/// (its label) and a "value". `tags` is the object of the container's tags, or null.
std::vector<std::map<std::string, std::string>> containerMetadata(const JSON& tags);

} // namespace tarnwell
