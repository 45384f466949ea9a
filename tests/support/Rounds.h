// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>

namespace tarnwell::test
{

/// How many random moments a test tries: the environment variable TARNWELL_ROUNDS, or `usual` without it.
inline int rounds(int usual)
{
    const char* wanted = std::getenv("TARNWELL_ROUNDS");
    return wanted != nullptr ? std::atoi(wanted) : usual;
}

} // namespace tarnwell::test
