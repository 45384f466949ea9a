// SPDX-License-Identifier: MIT
#include "tests/tools/CreatorTest.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/MovieBytes.h"
#include "tools/Placeholder.h"

#include <algorithm>
#include <cstdlib>

namespace tarnwell::test
{

namespace
{

const std::string report
    = R"({"streams": [{"codec_type": "video", "avg_frame_rate": "25/1", "width": 64, "height": 48}]})";

} // namespace

void CreatorTest::SetUp()
{
    setInput("the user's own video");
    m_inputAfterwards = input();
    tools.setFfprobe("print-file " + tools.addData("report.json", report) + "\n");
}

void CreatorTest::TearDown()
{
    ASSERT_TRUE(exists(m_inputAfterwards));
    EXPECT_TRUE(contentsOf(m_inputAfterwards) == m_original);
    EXPECT_EQ(std::filesystem::last_write_time(m_inputAfterwards), m_time);
}

void CreatorTest::setInput(const std::string& bytes)
{
    m_original = bytes;
    writeFile(input(), bytes);
    m_time = std::filesystem::last_write_time(input());
}

void CreatorTest::setGoodFfmpeg(const std::string& before)
{
    const std::string picture
        = "with -frames:v write-output-file " + tools.addData("picture", placeholderPicture(64, 48));
    const std::string video = "without -frames:v write-output-file " + tools.addData("movie", movie());
    tools.setFfmpeg(before + picture + "\n" + video + "\n");
}

std::string CreatorTest::movie()
{
    return smallMovie();
}

std::string CreatorTest::writing(const std::string& bytes)
{
    return "write-output-file " + tools.addData("bytes", bytes) + "\n";
}

int CreatorTest::run(const Words& arguments, const ToolSetup& setup)
{
    m_process = std::make_unique<ToolProcess>(tools.creator(), arguments, setup);
    return m_process->wait();
}

int CreatorTest::runWithPause(const std::string& variable, const Words& arguments,
    const std::function<void(const ToolProcess&)>& action, const Words& moreVariables)
{
    const std::string end = tools.addData("end of the pause", "");
    const std::string begin = end + ".waiting";
    std::filesystem::remove(end);
    ToolSetup setup = {.variables = moreVariables, .refused = {RefusedCall::ShareBlocks}};
    setup.variables.push_back("LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so");
    setup.variables.push_back(variable + "=" + end);
    m_process = std::make_unique<ToolProcess>(tools.creator(), arguments, setup);
    EXPECT_TRUE(waitForFile(begin)) << "creator does not make the system call of " << variable;
    action(*m_process);
    writeFile(end, "");
    const int status = m_process->wait();
    std::filesystem::remove(begin);
    return status;
}

void CreatorTest::expectError(const std::string& text) const
{
    EXPECT_NE(m_process->errorText().find(text), std::string::npos) << m_process->errorText();
}

Words CreatorTest::otherNames() const
{
    auto names = namesIn(tools.videos());
    names.erase(std::remove(names.begin(), names.end(), "clip.mp4"), names.end());
    return names;
}

void CreatorTest::expectOnlyOlderFile() const
{
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()), "older");
    std::filesystem::remove(output());
}

} // namespace tarnwell::test
