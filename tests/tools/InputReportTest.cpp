// SPDX-License-Identifier: MIT
// What creator asks ffprobe about the input of a save.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Rows.h"
#include "tests/tools/CreatorTest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>
#include <string>

namespace tarnwell::test
{

namespace
{

using Json = nlohmann::json;

const std::string notice = "tarnwell: ffprobe runs again after a read error\n";

const char* const quarterTurn = "\n00000000:            0      -65536           0\n"
                                "00000001:        65536           0           0\n"
                                "00000002:            0           0  1073741824\n";
const char* const halfTurn = "\n00000000:       -65536           0           0\n"
                             "00000001:            0      -65536           0\n"
                             "00000002:            0           0  1073741824\n";

Json sideData(const char* type, const char* matrix)
{
    return Json::array({{{"side_data_type", type}, {"displaymatrix", matrix}}});
}

/// A report of one video stream of that codec with the display matrix of a quarter turn.
std::string streamsReport(const std::string& codec)
{
    return Json({{"streams",
                    {{{"index", 0}, {"codec_type", "video"}, {"codec_name", codec},
                        {"avg_frame_rate", "25/1"}, {"width", 64}, {"height", 48},
                        {"side_data_list", sideData("Display Matrix", quarterTurn)}}}}})
        .dump();
}

std::string framesReport(const char* matrix, int major, int minor)
{
    return Json({{"frames", {{{"side_data_list", sideData("3x3 displaymatrix", matrix)}}}},
                    {"library_versions", {{{"name", "libavfilter"}, {"major", major}, {"minor", minor}}}}})
        .dump();
}

} // namespace

class InputReportTest : public CreatorTest
{
protected:
    /// The arguments of ffmpeg in a fix flag.
    Words ffmpegArguments()
    {
        EXPECT_EQ(run(fixFlag()), 0) << lastRun().errorText();
        return lastRun().saidInHex("argument ");
    }
};

TEST_F(InputReportTest, aReportIsRequestedAgainAfterAReadError)
{
    setGoodFfmpeg("say-arguments\n");
    tools.setFfprobe("error file:clip.mp4: Input/output error\\n\nprint {}\n");
    const std::string goOn = tools.addData("go on", "");
    std::filesystem::remove(goOn);
    ToolProcess creator(tools.creator(), transcode(),
        {.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
             "TARNWELL_FAILS=fork 2", "TARNWELL_WAITS_FOR=" + goOn}});
    ASSERT_TRUE(waitForFile(goOn + ".waiting"));
    tools.setFfprobe("print-file " + tools.addData("report", streamsReport("mpeg4")) + "\n");
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_NE(creator.errorText().find(notice), std::string::npos) << creator.errorText();
    const Words arguments = creator.saidInHex("argument ");
    EXPECT_EQ(std::count(arguments.begin(), arguments.end(), "0:0"), 1) << "the first report was used";
}

TEST_F(InputReportTest, aReadErrorInBothReportsIsNoFailure)
{
    setGoodFfmpeg();
    tools.setFfprobe("error file:clip.mp4: Input/output error\\n\nprint-file "
        + tools.addData("report", streamsReport("mpeg4")) + "\n");
    EXPECT_EQ(run(transcode()), 0);
    const std::string errors = lastRun().errorText();
    EXPECT_NE(errors.find(notice), std::string::npos);
    EXPECT_EQ(errors.find(notice), errors.rfind(notice));
}

TEST_F(InputReportTest, aReportIsRequestedOnceAfterOtherErrors)
{
    setGoodFfmpeg();
    tools.setFfprobe("error file:clip.mp4: Invalid data found\\n\n");
    EXPECT_EQ(run(transcode()), 0);
    EXPECT_EQ(lastRun().errorText().find(notice), std::string::npos);
    expectError("tarnwell: ffprobe reports no streams of the input\n");
}

struct MessageFilterRow {
    const char* name;
    const char* codec;
    const char* frameMatrix; // the container's is a quarter turn
    int major; // of libavfilter
    int minor;
    bool isFiltered;
};

void PrintTo(const MessageFilterRow& row, std::ostream* stream)
{
    *stream << row.name;
}

class MessageFilterTest : public InputReportTest, public testing::WithParamInterface<MessageFilterRow>
{
};

TEST_P(MessageFilterTest, isUsedOnlyForAMatrixThatIsNotOfTheContainer)
{
    const auto& row = GetParam();
    setGoodFfmpeg("say-arguments\n");
    tools.setFfprobe("with -show_frames print-file "
        + tools.addData("frames", framesReport(row.frameMatrix, row.major, row.minor))
        + "\nwithout -show_frames print-file " + tools.addData("streams", streamsReport(row.codec)) + "\n");
    const Words arguments = ffmpegArguments();
    EXPECT_EQ(std::count(arguments.begin(), arguments.end(), "-bsf:v"), row.isFiltered ? 1 : 0)
        << testing::PrintToString(arguments);
}

INSTANTIATE_TEST_SUITE_P(Versions, MessageFilterTest,
    testing::Values(MessageFilterRow{"otherMatrixInFfmpeg7", "hevc", halfTurn, 10, 5, true},
        MessageFilterRow{"sameMatrixInFfmpeg7", "hevc", quarterTurn, 10, 5, false},
        MessageFilterRow{"sameMatrixInFfmpeg61", "hevc", quarterTurn, 9, 12, false},
        MessageFilterRow{"sameMatrixInFfmpeg60", "hevc", quarterTurn, 9, 3, true},
        MessageFilterRow{"sameMatrixInFfmpeg51", "hevc", quarterTurn, 8, 44, true},
        MessageFilterRow{"sameMatrixOfH264InFfmpeg7", "h264", quarterTurn, 10, 5, true}),
    rowName);

} // namespace tarnwell::test
