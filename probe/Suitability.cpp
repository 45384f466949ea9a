// SPDX-License-Identifier: MIT
#include "probe/Suitability.h"

#include "probe/FileProbe.h"

namespace tarnwell
{

bool isSuitable(const FileProbe& probe)
{
    return probe.isValidMediaFile && !probe.hasErrors && !probe.isEncrypted && probe.hasVideoTrack
        && probe.videoWidth != 0;
}

} // namespace tarnwell
