// SPDX-License-Identifier: MIT
#pragma once

#include "orientation/OrientationState.h"

#include <string>

namespace tarnwell
{

/// The message of the alert that reports a finished export, by the orientation at that moment.
std::string successMessage(const OrientationState& state);

} // namespace tarnwell
