// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace tarnwell::test
{

/// The system resources that this process uses now.
struct OwnResources {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    std::size_t children = 0; // including zombies
    std::size_t memory = 0; // resident, in kB
};

OwnResources ownResources();

} // namespace tarnwell::test
