// SPDX-License-Identifier: MIT
#include "orientation/OrientationState.h"

#include "util/CheckedArithmetic.h"

namespace tarnwell
{

namespace
{

constexpr std::int64_t firstPosition = 1;
constexpr std::int64_t lastPosition = 4;
constexpr std::int64_t quarterTurn = 90;

} // namespace

std::int64_t positionAfterRotatingLeft(std::int64_t positionState)
{
    const auto next = checkedSum(positionState, 1);
    return next == lastPosition + 1 ? firstPosition : next;
}

std::int64_t positionAfterRotatingRight(std::int64_t positionState)
{
    const auto next = checkedDifference(positionState, 1);
    return next == firstPosition - 1 ? lastPosition : next;
}

std::int64_t angleOfPosition(std::int64_t positionState)
{
    return checkedProduct(checkedDifference(positionState, firstPosition), quarterTurn);
}

bool isRotated(const OrientationState& state)
{
    // Values below 2 wrap to large unsigned numbers.
    return static_cast<std::uint64_t>(state.positionState) - 2U <= 2U;
}

bool isFlipped(const OrientationState& state)
{
    return state.vFlipState || state.hFlipState;
}

std::string orientationLabel(const OrientationState& state)
{
    if (isRotated(state))
        return isFlipped(state) ? "Rotated and Flipped" : "Rotated";
    return isFlipped(state) ? "Flipped" : "Processed";
}

} // namespace tarnwell
