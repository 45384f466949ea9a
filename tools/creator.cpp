// SPDX-License-Identifier: MIT
// The encoder tool: makes stills and videos with ffmpeg.
#include "tools/BecomeProgram.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{

// The encoder that MP4 stands for takes no odd width or height with this pixel format: a last line that has no
// partner is left out.
const std::string evenSize = "crop=trunc(iw/2)*2:trunc(ih/2)*2:0:0";

using Arguments = std::vector<std::string>;

void cropToEvenSize(Arguments& arguments)
{
    if (std::find(arguments.begin(), arguments.end(), "-pix_fmt") == arguments.end())
        return;
    const auto filterOption = std::find(arguments.begin(), arguments.end(), "-vf");
    if (filterOption != arguments.end() && filterOption + 1 != arguments.end())
        filterOption[1] += "," + evenSize;
    else
        arguments.insert(arguments.end() - 2, {"-vf", evenSize}); // the list ends with "-y" and the output
}

} // namespace

int main(int argc, char* argv[])
{
    Arguments arguments(argv, argv + argc);
    cropToEvenSize(arguments);
    std::vector<char*> pointers;
    for (auto& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return becomeProgram(TARNWELL_FFMPEG_FOLDER "/ffmpeg", pointers.data());
}
