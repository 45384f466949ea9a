// SPDX-License-Identifier: MIT
#include "platform/Diagnostics.h"

#include <cstdio>
#include <string>

namespace tarnwell
{

void printLine(std::string_view line)
{
    std::string text(line);
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

} // namespace tarnwell
