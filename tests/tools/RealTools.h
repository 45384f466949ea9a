// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"
#include "tests/support/Folders.h"
#include "tests/tools/Commands.h"
#include "tests/tools/ToolProcess.h"

#include <QImage>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tarnwell::test
{

inline const std::string realFfmpeg = "/usr/bin/ffmpeg";
inline const std::string realFfprobe = "/usr/bin/ffprobe";
inline const std::string builtCreator = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/creator";
inline const std::string builtSniffer = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/sniffer";

/// Runs both tools with the installed ffprobe and ffmpeg, with a folder for videos.
class RealTools : public testing::Test
{
protected:
    const std::string& folder() const { return m_folder.path(); }
    std::string at(const std::string& name) const { return folder() + name; }

    /// Makes a video from one of ffmpeg's test sources, such as "testsrc".
    void makeVideo(const std::string& path, const std::string& source, const Words& options) const;
    /// Options for a fast H.264 encoding.
    static Words h264() { return {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p"}; }

    static int creator(const Words& command) { return runTool(builtCreator, command); }

    /// The still that the preview shows.
    QImage still(const std::string& path, const std::string& position = "0.5") const;
    static QImage imageAt(const std::string& path);

    /// A frame of each video as players show it, at the position in seconds; empty means the first frame. All
    /// videos are decoded by one process.
    std::vector<QImage> shownFrames(const Words& videos, const std::string& position = {}) const;

    /// Runs ffmpeg once for several inputs and outputs, and fails the test if it fails.
    static void runFfmpeg(const Words& options);

    /// The report of sniffer or ffprobe.
    static nlohmann::json report(const std::string& path, const std::string& program = builtSniffer);

private:
    TemporaryDirectory m_folder;
};

} // namespace tarnwell::test
