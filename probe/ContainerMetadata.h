// SPDX-License-Identifier: MIT
#pragma once

#include "probe/JSON.h"

#include <map>
#include <string>
#include <vector>

namespace tarnwell
{

/// The twelve metadata entries of a container in fixed order, each with "key" (the label) and "value". A
/// missing tag has the value "", or "No" under "HD". `tags` is the report's object of container tags, or
/// null.
std::vector<std::map<std::string, std::string>> containerMetadata(const JSON& tags);

} // namespace tarnwell
