// SPDX-License-Identifier: MIT
#pragma once

#include "app/Outlets.h"
#include "orientation/OrientationState.h"

#include <QString>

#include <optional>

namespace tarnwell
{

class FileProbe;

/// The texts of the main window about the open video: the window's title with its name and the progress of a
/// save, the line below the picture, and the picture's accessible description. A refused file changes none of
/// them. Main thread.
class VideoTexts
{
public:
    explicit VideoTexts(Outlets outlets);

    /// For a newly opened video, in its initial orientation.
    void setVideo(const FileProbe& probe);

    void setOrientation(const OrientationState& state);

    /// The title shows a progress between these two calls only. The encoder's last report can arrive after
    /// the end of the save.
    void beginProgress();
    void endProgress();

    /// In percent.
    void setProgress(int percent);

private:
    void setTitle();

    Outlets m_outlets;
    QString m_name; // of the file; empty before the first video
    QString m_facts;
    std::optional<int> m_percent; // absent unless a save runs
};

} // namespace tarnwell
