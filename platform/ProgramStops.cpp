// SPDX-License-Identifier: MIT
#include "platform/ProgramStops.h"

#include <cstdlib>

namespace tarnwell
{

void programStops() noexcept
{
    std::abort();
}

} // namespace tarnwell
