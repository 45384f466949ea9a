// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell
{

/// The e-mail address for questions, fixed when the program is built.
std::string supportAddress();

} // namespace tarnwell
