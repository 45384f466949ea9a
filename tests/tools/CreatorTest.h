// SPDX-License-Identifier: MIT
#pragma once

#include "tests/tools/ToolFolder.h"
#include "tests/tools/ToolProcess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tarnwell::test
{

/// Runs creator with a fake for ffmpeg. After each test the input is what it was, however the run ended.
class CreatorTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    std::string input() const { return tools.at("clip.mp4"); }
    std::string output() const { return tools.at("Rotated.mp4"); }

    /// Another content for the input.
    void setInput(const std::string& bytes);

    /// The three lists, for `input` and `output` unless told otherwise.
    std::vector<std::string> still() const { return still("1.5", output()); }
    std::vector<std::string> still(const std::string& position, const std::string& path) const;
    std::vector<std::string> fixFlag() const { return fixFlag(output()); }
    std::vector<std::string> fixFlag(const std::string& path) const;
    std::vector<std::string> transcode() const { return transcode(input(), output()); }
    std::vector<std::string> transcode(const std::string& from, const std::string& to) const;

    /// An ffmpeg that makes a whole movie or picture, after what `before` says.
    void setGoodFfmpeg(const std::string& before = {});
    /// The movie.
    std::string movie() const;

    /// Runs creator to its end.
    int run(const std::vector<std::string>& arguments) { return runTool(tools.creator(), arguments); }

    /// The videos folder's names without the input's.
    std::vector<std::string> otherNames() const;

    /// Where the input is looked for after the test, when it has been put aside.
    void expectInputAt(const std::string& path) { m_inputAfterwards = path; }

    ToolFolder tools;

private:
    std::string m_original;
    std::string m_inputAfterwards;
    std::filesystem::file_time_type m_time;
};

} // namespace tarnwell::test
