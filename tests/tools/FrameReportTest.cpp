// SPDX-License-Identifier: MIT
// What ffprobe reports of the first frames of a stream with an orientation message, and of the library
// versions.
#include "tools/Report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace tarnwell::test
{

namespace
{

using Json = nlohmann::json;

const Json otherData = {{"side_data_type", "H.26[45] User Data Unregistered SEI message"}};
// A quarter turn to the left, as FFmpeg 5.1 prints it.
const Json turn = {{"side_data_type", "3x3 displaymatrix"},
    {"displaymatrix",
        "\n00000000:            0      -65536           0\n00000001:        65536           0           0\n"
        "00000002:            0           0  1073741824\n"},
    {"rotation", 90}};

Json frameWith(const Json& sideData)
{
    return {{"media_type", "video"}, {"side_data_list", sideData}};
}

std::string reportOf(const Json& frames, int filterVersion = 8)
{
    const Json versions
        = {{{"name", "libavcodec"}, {"major", 4}}, {{"name", "libavfilter"}, {"major", filterVersion}}};
    return Json({{"frames", frames}, {"library_versions", versions}}).dump();
}

} // namespace

TEST(FrameReportTest, theFirstMatrixOfAFrameIsRead)
{
    for (const Json& frames : {Json::array({frameWith(Json::array({turn}))}),
             Json::array({frameWith(Json::array({otherData, turn}))}),
             Json::array({Json({{"media_type", "video"}}), 5, frameWith(Json::array({otherData})),
                 frameWith(Json::array({turn}))})}) {
        const auto matrix = frameOrientationOf(reportOf(frames)).matrix;
        ASSERT_TRUE(matrix) << frames;
        EXPECT_EQ(rotationTag(*matrix), 270);
    }
}

TEST(FrameReportTest, framesWithoutAMatrixHaveNoOrientation)
{
    EXPECT_FALSE(frameOrientationOf(reportOf(Json::array({frameWith(Json::array({otherData}))}))).matrix);
    for (const char* report : {"", "[]", "{}", R"({"frames": 5})", R"({"frames": [{"side_data_list": 5}]})",
             R"({"frames": [{"side_data_list": [{"side_data_type": "3x3 displaymatrix"}]}]})"}) {
        EXPECT_FALSE(frameOrientationOf(report).matrix) << report;
        EXPECT_TRUE(frameOrientationOf(report).isObeyed) << report;
    }
}

TEST(FrameReportTest, versionsBefore5ObeyTheContainerOnly)
{
    EXPECT_FALSE(frameOrientationOf(reportOf(Json::array({frameWith(Json::array({turn}))}), 7)).isObeyed);
    EXPECT_TRUE(frameOrientationOf(reportOf(Json::array({frameWith(Json::array({turn}))}), 8)).isObeyed);
    EXPECT_TRUE(frameOrientationOf(reportOf(Json::array({frameWith(Json::array({turn}))}), 10)).isObeyed);
}

} // namespace tarnwell::test
