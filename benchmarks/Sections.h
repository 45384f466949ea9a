// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Report.h"

#include <string>

namespace tarnwell::bench
{

/// The report, the folder and the options of a benchmark section.
struct BenchContext {
    Report& report;
    /// Holds the clips of benchmarks/make-clips and temporary outputs; without a trailing slash.
    std::string folder;
    bool isQuick = false;

    std::string clip(const std::string& name) const { return folder + "/" + name + ".mp4"; }
    /// The number of rounds: a third of `many` with --quick.
    int rounds(int many) const { return isQuick ? (many + 2) / 3 : many; }
};

/// The names of the clips of different picture sizes, in ascending order.
inline constexpr const char* pictureSizes[] = {"360p", "720p", "1080p", "4K", "8K"};

// Each section creates its own window. ./bench runs each in a separate process, so that they do not affect
// each other's memory.

void measureOpening(const BenchContext& context);
void measureClicks(const BenchContext& context);
void measureExports(const BenchContext& context);
/// If the environment has SHARED_BLOCKS_MISSING, reports this reason and does not measure.
void measureSharing(const BenchContext& context);
void measureMemory(const BenchContext& context);
void measureMainThread(const BenchContext& context);

} // namespace tarnwell::bench
