// SPDX-License-Identifier: MIT
// The probe tool: prints ffprobe's report on one file.
#include "tools/BecomeProgram.h"

int main(int /*argc*/, char* argv[])
{
    return becomeProgram(TARNWELL_FFMPEG_FOLDER "/ffprobe", argv);
}
