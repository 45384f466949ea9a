// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A JPEG picture of one grey, in the given size; sizes beyond what the format holds are cut to it.
std::string placeholderPicture(int width, int height);
