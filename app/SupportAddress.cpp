// SPDX-License-Identifier: MIT
#include "app/SupportAddress.h"

namespace tarnwell
{

std::string supportAddress()
{
    return TARNWELL_SUPPORT_ADDRESS;
}

} // namespace tarnwell
