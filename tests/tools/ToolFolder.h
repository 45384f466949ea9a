// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"

#include <map>
#include <string>

namespace tarnwell::test
{

/// A folder with the built sniffer and creator and with fakes for ffprobe and ffmpeg, and another folder for
/// videos. The programs are hard links to those of the build tree, so a test must not write to them.
class ToolFolder
{
public:
    ToolFolder();

    std::string creator() const { return m_tools.path() + "creator"; }
    std::string sniffer() const { return m_tools.path() + "sniffer"; }

    /// Sets the fake's script for its next runs; see tests/support/FakeTools.h. Until then the system's tool
    /// is used.
    void setFfmpeg(const std::string& script) { setTool("ffmpeg", script); }
    void setFfprobe(const std::string& script) { setTool("ffprobe", script); }

    /// The same for tests/fakes/hostileTool.cpp, which a test can also run directly.
    void setHostileFfmpeg(const std::string& script) { setTool("ffmpeg", script, "hostileTool"); }
    void setHostileFfprobe(const std::string& script) { setTool("ffprobe", script, "hostileTool"); }
    std::string ffmpeg() const { return m_tools.path() + "ffmpeg"; }

    /// Replaces it with an executable file that is not a program.
    void breakFfmpeg() { breakTool("ffmpeg"); }
    void breakFfprobe() { breakTool("ffprobe"); }

    /// Creates a file in the tools' folder, where a fake can read it, and returns its path.
    std::string addData(const std::string& name, const std::string& contents);

    /// A path in the folder of videos.
    std::string at(const std::string& name) const { return m_videos.path() + name; }
    /// The folder of videos, with a trailing "/".
    const std::string& videos() const { return m_videos.path(); }

private:
    void setTool(const std::string& name, const std::string& script, const std::string& program = "fakeTool");
    void breakTool(const std::string& name);

    std::map<std::string, std::string> m_programs; // name of a fake and of its program in the build tree
    TemporaryDirectory m_tools;
    TemporaryDirectory m_videos;
};

} // namespace tarnwell::test
