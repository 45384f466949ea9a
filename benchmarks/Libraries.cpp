// SPDX-License-Identifier: MIT
#include "benchmarks/Libraries.h"

#include <algorithm>
#include <fnmatch.h>
#include <fstream>
#include <sstream>

namespace tarnwell::bench
{

namespace
{

const std::string ownPlugin = "libfirstPaint.so";
const std::string rowBegin = "| `";

} // namespace

Libraries librariesIn(const std::string& maps)
{
    Libraries libraries;
    std::istringstream lines(maps);
    for (std::string line; std::getline(lines, line);) {
        const auto slash = line.rfind('/');
        const std::string name = slash == std::string::npos ? "" : line.substr(slash + 1);
        if (name.find(".so") != std::string::npos && name != ownPlugin)
            libraries.insert(name);
    }
    return libraries;
}

Reasons readReasons(const std::string& path)
{
    Reasons reasons;
    std::ifstream lines(path);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(rowBegin, 0) != 0)
            continue;
        const auto patternEnd = line.find('`', rowBegin.size());
        const auto reasonBegin = line.find("| ", patternEnd);
        const auto reasonEnd = line.rfind(" |");
        if (reasonBegin == std::string::npos || reasonEnd <= reasonBegin + 2)
            continue;
        reasons.emplace_back(line.substr(rowBegin.size(), patternEnd - rowBegin.size()),
            line.substr(reasonBegin + 2, reasonEnd - reasonBegin - 2));
    }
    return reasons;
}

std::string reasonFor(const std::string& library, const Reasons& reasons)
{
    const auto found = std::find_if(reasons.begin(), reasons.end(),
        [&library](const auto& reason) { return ::fnmatch(reason.first.c_str(), library.c_str(), 0) == 0; });
    return found == reasons.end() ? "" : found->second;
}

} // namespace tarnwell::bench
