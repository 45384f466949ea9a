// SPDX-License-Identifier: MIT
#pragma once

#include "orientation/OrientationState.h"

#include <string>

namespace tarnwell
{

/// The message text of the success alert. `state`: the orientation when the alert is shown.
std::string successMessage(const OrientationState& state);

} // namespace tarnwell
