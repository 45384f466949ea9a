// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Report.h"

#include <string>

namespace tarnwell::bench
{

/// What a section works with.
struct Setting {
    Report& report;
    /// Where the clips of benchmarks/make-clips are and files may be left; without a closing slash.
    std::string folder;
    bool isQuick = false;

    std::string clip(const std::string& name) const { return folder + "/" + name + ".mp4"; }
    /// How often something is measured: three times less when it must be quick.
    int rounds(int many) const { return isQuick ? (many + 2) / 3 : many; }
};

/// The names of the clips of growing picture size.
inline constexpr const char* pictureSizes[] = {"360p", "720p", "1080p", "4K", "8K"};

// Each of these starts from a window of its own, and best runs in a process of its own.

void measureOpening(const Setting& setting);
void measureClicks(const Setting& setting);
void measureExports(const Setting& setting);
void measureMemory(const Setting& setting);
void measureMainThread(const Setting& setting);

} // namespace tarnwell::bench
