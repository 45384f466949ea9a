// SPDX-License-Identifier: MIT
#pragma once

#include "tests/tools/Commands.h"
#include "tests/tools/ToolFolder.h"
#include "tests/tools/ToolProcess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarnwell::test
{

/// Runs creator with a fake ffmpeg. After each test, checks that the content and time of the input have not
/// changed.
class CreatorTest : public testing::Test
{
protected:
    static constexpr int cancelled = 255; // the exit status after a cancel

    void SetUp() override;
    void TearDown() override;

    std::string input() const { return tools.at("clip.mp4"); }
    std::string output() const { return tools.at("Rotated.mp4"); }
    /// The path of an older file while it is replaced.
    std::string previousPath() const { return tools.at("Rotated (previous).mp4"); }

    /// Replaces the content of the input.
    void setInput(const std::string& bytes);

    Words still() const { return still("1.5", output()); }
    Words still(const std::string& position, const std::string& path) const
    {
        return stillCommand(position, input(), path);
    }
    Words fixFlag() const { return fixFlag(output()); }
    Words fixFlag(const std::string& path) const { return fixFlagCommand(input(), path); }
    Words transcode() const { return transcode(input(), output()); }
    Words transcode(const std::string& from, const std::string& to) const
    {
        return transcodeCommand(from, to, "hflip");
    }

    /// Sets an ffmpeg that runs the commands in `before` and then writes a complete movie or picture.
    void setGoodFfmpeg(const std::string& before = {});
    /// The movie that this ffmpeg writes.
    static std::string movie();
    /// The fake tool's command that writes the bytes to its output.
    std::string writing(const std::string& bytes);

    /// Runs creator to its end and returns its exit status. `lastRun` returns the ended process.
    int run(const Words& arguments, const ToolSetup& setup = {});
    const ToolProcess& lastRun() const { return *m_process; }
    /// Like run, but calls `action` while creator waits in a system call. `variable` names the call, see
    /// tests/faults/failingCalls.cpp. The file system shares no blocks.
    int runWithPause(const std::string& variable, const Words& arguments,
        const std::function<void(const ToolProcess&)>& action, const Words& moreVariables = {});
    /// Expects the text in the standard error of the last run.
    void expectError(const std::string& text) const;

    /// The names in the folder of videos, except that of the input.
    Words otherNames() const;
    /// Expects the older file, with the content "older", to be at the output's path and the only file besides
    /// the input. Deletes it.
    void expectOnlyOlderFile() const;

    /// Sets the path of the input after the test, for tests in which creator renames it.
    void expectInputAt(const std::string& path) { m_inputAfterwards = path; }
    std::string originalPath() const { return tools.at("clip (original).mp4"); }

    ToolFolder tools;

private:
    std::unique_ptr<ToolProcess> m_process;
    std::string m_original;
    std::string m_inputAfterwards;
    std::filesystem::file_time_type m_time;
};

} // namespace tarnwell::test
