// SPDX-License-Identifier: MIT
#include "export/ExportPlan.h"

#include "util/CheckedArithmetic.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tarnwell
{

namespace
{

constexpr std::int64_t halfTurn = 180;
constexpr std::int64_t fullTurn = 360;

// Indexed by position - 1. transpose=2 is a quarter turn counterclockwise, transpose=1 clockwise.
constexpr std::array<std::string_view, 4> rotationFilters
    = {"", "transpose=2", "transpose=2,transpose=2", "transpose=1"};

bool isKnownPosition(std::int64_t positionState)
{
    return positionState >= 1 && positionState <= static_cast<std::int64_t>(rotationFilters.size());
}

void addFilter(std::string& chain, std::string_view filter)
{
    if (!chain.empty() && !filter.empty())
        chain += ',';
    chain += filter;
}

std::string filterChain(const OrientationState& state)
{
    std::string chain;
    addFilter(chain, rotationFilters.at(static_cast<std::size_t>(state.positionState - 1)));
    addFilter(chain, state.vFlipState ? "vflip" : "");
    addFilter(chain, state.hFlipState ? "hflip" : "");
    return chain;
}

std::string_view word(bool value)
{
    return value ? "true" : "false";
}

} // namespace

bool isFixFlagPossible(const std::vector<std::string>& trackCodecs, const OrientationState& state)
{
    const bool hasFlaggableTrack = std::any_of(trackCodecs.begin(), trackCodecs.end(),
        [](const std::string& codec) { return codec == "h264" || codec == "hevc"; });
    return hasFlaggableTrack && state.vFlipState == state.hFlipState;
}

std::optional<std::int64_t> fixFlagRotation(const OrientationState& state, std::int64_t tagRotateValue)
{
    if (!isKnownPosition(state.positionState))
        return std::nullopt;
    const std::int64_t mirrors = state.vFlipState && state.hFlipState ? halfTurn : 0;
    const std::int64_t shown = (angleOfPosition(state.positionState) + mirrors) % fullTurn;
    return checkedDifference(shown, tagRotateValue);
}

ArgumentList fixFlagArgumentList(
    const std::string& inputPath, const std::string& outputPath, std::optional<std::int64_t> rotation)
{
    ArgumentList arguments = {"-i", inputPath, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v"};
    if (rotation)
        arguments.push_back("rotate=" + std::to_string(*rotation));
    arguments.insert(arguments.end(), {"-y", outputPath});
    return arguments;
}

ArgumentList transcodeArgumentList(
    const std::string& inputPath, const std::string& outputPath, const OrientationState& state)
{
    ArgumentList arguments = {"-i", inputPath, "-pix_fmt", "yuv420p"};
    if (!isKnownPosition(state.positionState))
        arguments.emplace_back("-vf");
    else if (const std::string chain = filterChain(state); !chain.empty())
        arguments.insert(arguments.end(), {"-vf", chain});
    arguments.insert(arguments.end(), {"-metadata:s:v", "rotate=0", "-y", outputPath});
    return arguments;
}

std::string orientationLine(const OrientationState& state)
{
    // "vFlipSte" is the established spelling; scripts search for it.
    return std::string("positionState : ")
        .append(std::to_string(state.positionState))
        .append(", vFlipSte : ")
        .append(word(state.vFlipState))
        .append(", hFlipState : ")
        .append(word(state.hFlipState));
}

std::string argumentListLine(const ArgumentList& arguments)
{
    std::string line = "[";
    for (const auto& argument : arguments) {
        if (line.size() > 1)
            line += ", ";
        line.append("\"").append(argument).append("\"");
    }
    return line + "]";
}

std::vector<std::string> fixFlagLines(
    const ArgumentList& arguments, const std::optional<std::int64_t>& rotation)
{
    if (!rotation)
        return {"Something Wrong!", argumentListLine(arguments)};
    return {argumentListLine(arguments)};
}

} // namespace tarnwell
