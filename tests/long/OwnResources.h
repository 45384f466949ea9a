// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace tarnwell::test
{

/// What this process holds of the machine at the moment.
struct OwnResources {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    std::size_t children = 0; // those that ended and were not waited for included
    std::size_t memory = 0; // kilobytes that are resident
};

OwnResources ownResources();

} // namespace tarnwell::test
