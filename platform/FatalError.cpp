// SPDX-License-Identifier: MIT
#include "platform/FatalError.h"

#include <cstdlib>

namespace tarnwell
{

void fatalError() noexcept
{
    std::abort();
}

} // namespace tarnwell
