// SPDX-License-Identifier: MIT
#pragma once

#include "platform/TemporaryDirectory.h"

#include <map>
#include <string>

namespace tarnwell::test
{

/// Copies of the built sniffer and creator, in a folder of their own, beside which they find fakes for
/// ffprobe and ffmpeg; and another folder for videos.
class ToolFolder
{
public:
    ToolFolder();

    std::string creator() const { return m_tools.path() + "creator"; }
    std::string sniffer() const { return m_tools.path() + "sniffer"; }

    /// What the fake does from its next run on; see tests/support/FakeTools.h. Until then there is
    /// none, and that of the system is used.
    void setFfmpeg(const std::string& script) { setTool("ffmpeg", script); }
    void setFfprobe(const std::string& script) { setTool("ffprobe", script); }

    /// The same for tests/fakes/hostileTool.cpp. It may be run as it is, too.
    void setHostileFfmpeg(const std::string& script) { setTool("ffmpeg", script, "hostileTool"); }
    void setHostileFfprobe(const std::string& script) { setTool("ffprobe", script, "hostileTool"); }
    std::string ffmpeg() const { return m_tools.path() + "ffmpeg"; }

    /// Makes it a file that may be run and is no program.
    void breakFfmpeg() { breakTool("ffmpeg"); }
    void breakFfprobe() { breakTool("ffprobe"); }

    /// Makes a file beside the tools, where a fake may read it; its path.
    std::string addData(const std::string& name, const std::string& contents);

    /// A path in the folder of videos.
    std::string at(const std::string& name) const { return m_videos.path() + name; }
    /// The folder of videos, with a "/" at its end.
    const std::string& videos() const { return m_videos.path(); }

private:
    void setTool(const std::string& name, const std::string& script, const std::string& program = "fakeTool");
    void breakTool(const std::string& name);

    std::map<std::string, std::string> m_programs; // which one each fake is a copy of
    TemporaryDirectory m_tools;
    TemporaryDirectory m_videos;
};

} // namespace tarnwell::test
