// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"
#include "platform/ToolContext.h"

#include <QImage>

#include <optional>

namespace tarnwell
{

class FileProbe;

/// Extracts still frames with the tool `creator`. Every extraction writes the same file, which is deleted
/// after it has been read. The file is in a private folder that is created at the first extraction and
/// replaced when its disk is full. Main thread.
class StillFrameExtractor
{
public:
    /// Returns a frame from the middle of the video, decoded by a separate run of `creator`, or the picture
    /// "poster" if the bundle has no such tool. Waits for the tool with `tools.wait`. Stops the program if
    /// the tool leaves no readable picture.
    QImage extract(const FileProbe& probe, const ToolContext& tools);

    /// Removes the private folder.
    void removeFolder() { m_folder.reset(); }

private:
    /// Null if the tool leaves no readable picture in any folder that has room.
    QImage pictureMadeBy(const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait);
    QImage runCreator(const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait) const;

    std::optional<TemporaryDirectory> m_folder; // absent before the first extraction
};

} // namespace tarnwell
