// SPDX-License-Identifier: MIT
// The encoder tool: makes stills and videos with ffmpeg.
#include "tools/BecomeProgram.h"

int main(int /*argc*/, char* argv[])
{
    return becomeProgram(TARNWELL_FFMPEG_FOLDER "/ffmpeg", argv);
}
