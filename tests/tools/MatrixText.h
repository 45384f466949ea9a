// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace tarnwell::test
{

/// The nine numbers of a display matrix in fixed-point notation.
std::vector<long long> matrixNumbers(double a, double b, double c, double d);

/// Nine numbers in three numbered rows, as ffprobe prints them.
std::string textOfNumbers(const std::vector<long long>& numbers);

std::string matrixText(double a, double b, double c, double d);

} // namespace tarnwell::test
