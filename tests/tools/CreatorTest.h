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

/// Runs creator with a fake for ffmpeg. After each test the input has its old content and time.
class CreatorTest : public testing::Test
{
protected:
    static constexpr int cancelled = 255; // the exit status after a cancel

    void SetUp() override;
    void TearDown() override;

    std::string input() const { return tools.at("clip.mp4"); }
    std::string output() const { return tools.at("Rotated.mp4"); }
    /// Where an older file at the output's path is renamed to.
    std::string previousPath() const { return tools.at("Rotated (previous).mp4"); }

    /// Another content for the input.
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

    /// An ffmpeg that writes a whole movie or picture, after the commands in `before`.
    void setGoodFfmpeg(const std::string& before = {});
    /// The movie that it writes.
    static std::string movie();
    /// The command with which a fake writes the bytes to its output.
    std::string writing(const std::string& bytes);

    /// Runs creator to its end; its exit status. The process can be looked at afterwards.
    int run(const Words& arguments, const ToolSetup& setup = {});
    const ToolProcess& lastRun() const { return *m_process; }
    /// The same, and calls `action` while creator waits in a system call; see tests/faults/failingCalls.cpp
    /// for the names of the variables.
    int runWithPause(const std::string& variable, const Words& arguments,
        const std::function<void(const ToolProcess&)>& action);
    /// The last run has written the text to standard error.
    void expectError(const std::string& text) const;

    /// The names in the folder of videos, without the input's.
    Words otherNames() const;
    /// Nothing is left but the file that was at the output's path, whose content was "older". Deletes it.
    void expectOnlyOlderFile() const;

    /// Where the input is expected after the test, if creator renames it.
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
