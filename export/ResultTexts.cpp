// SPDX-License-Identifier: MIT
#include "export/ResultTexts.h"

namespace tarnwell
{

std::string successMessage(const OrientationState& state)
{
    return "Video " + orientationLabel(state) + " Successfully!";
}

} // namespace tarnwell
