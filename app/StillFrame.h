// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ToolContext.h"

#include <QImage>

#include <string>

namespace tarnwell
{

class FileProbe;

/// A picture and the bytes of the file that it was decoded from.
struct DecodedPicture {
    std::string bytes;
    QImage picture;
};

/// A still from the middle of the described video, as `creator` decodes it; the picture "poster" where the
/// application has no such tool. Waits for the tool as `tools` says. A tool that leaves no picture stops the
/// program. Nothing stays behind in the temporary folder. `last` is the still before, at first an empty one,
/// and becomes this one: of bytes that come again the picture is a copy, and not decoded again.
QImage extractStillFrame(const FileProbe& probe, const ToolContext& tools, DecodedPicture& last);

} // namespace tarnwell
