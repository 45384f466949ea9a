// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// A list of command line arguments.
using Arguments = std::vector<std::string>;

inline void append(Arguments& list, const Arguments& more)
{
    list.insert(list.end(), more.begin(), more.end());
}
