// SPDX-License-Identifier: MIT
#include "tests/tools/CreatorTest.h"

#include "tests/support/Files.h"
#include "tests/tools/MovieBytes.h"
#include "tools/Placeholder.h"

#include <algorithm>

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

std::vector<std::string> CreatorTest::still(const std::string& position, const std::string& path) const
{
    return {"-v", "quiet", "-ss", position, "-i", input(), "-frames:v", "1", "-y", path};
}

std::vector<std::string> CreatorTest::fixFlag(const std::string& path) const
{
    return {"-i", input(), "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=90", "-y", path};
}

std::vector<std::string> CreatorTest::transcode(const std::string& from, const std::string& to) const
{
    return {"-i", from, "-pix_fmt", "yuv420p", "-vf", "hflip", "-metadata:s:v", "rotate=0", "-y", to};
}

void CreatorTest::setGoodFfmpeg(const std::string& before)
{
    const std::string picture
        = "with -frames:v write-output-file " + tools.addData("picture", placeholderPicture(64, 48));
    const std::string video = "without -frames:v write-output-file " + tools.addData("movie", movie());
    tools.setFfmpeg(before + picture + "\n" + video + "\n");
}

std::string CreatorTest::movie() const
{
    return smallMovie();
}

std::vector<std::string> CreatorTest::otherNames() const
{
    auto names = namesIn(tools.videos());
    names.erase(std::remove(names.begin(), names.end(), "clip.mp4"), names.end());
    return names;
}

} // namespace tarnwell::test
