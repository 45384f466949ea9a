// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FatalError.h"

#include <cstdint>

namespace tarnwell
{

// Arithmetic on signed 64-bit numbers that stops the program on overflow.

inline std::int64_t checkedSum(std::int64_t left, std::int64_t right)
{
    std::int64_t result = 0;
    if (__builtin_add_overflow(left, right, &result))
        fatalError();
    return result;
}

inline std::int64_t checkedDifference(std::int64_t left, std::int64_t right)
{
    std::int64_t result = 0;
    if (__builtin_sub_overflow(left, right, &result))
        fatalError();
    return result;
}

inline std::int64_t checkedProduct(std::int64_t left, std::int64_t right)
{
    std::int64_t result = 0;
    if (__builtin_mul_overflow(left, right, &result))
        fatalError();
    return result;
}

} // namespace tarnwell
