// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ToolContext.h"

#include <QImage>

namespace tarnwell
{

class FileProbe;

/// A still from the middle of the described video, as `creator` decodes it; the picture "poster" where the
/// application has no such tool. Waits for the tool as `tools` says. A tool that leaves no picture stops the
/// program. Nothing stays behind in the temporary folder.
QImage extractStillFrame(const FileProbe& probe, const ToolContext& tools);

} // namespace tarnwell
