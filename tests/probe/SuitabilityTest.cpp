// SPDX-License-Identifier: MIT
#include "probe/FileProbe.h"
#include "tests/probe/ProbeTestSetup.h"

namespace tarnwell::test
{

namespace
{

/// One change to the description of a suitable video.
struct ChangeCase {
    std::string name;
    void (*change)(FileProbe& probe);
    bool isSuitable;
};

} // namespace

class SuitabilityChangeTest : public ProbeTestSetup, public testing::WithParamInterface<ChangeCase>
{
};

TEST_P(SuitabilityChangeTest, isDecidedByFiveFields)
{
    FileProbe probe
        = probeOfStreams(R"({"codec_type": "video", "codec_name": "h264", "width": 640, "height": 480})");
    GetParam().change(probe);
    EXPECT_EQ(isSuitable(probe), GetParam().isSuitable);
}

INSTANTIATE_TEST_SUITE_P(Changes, SuitabilityChangeTest,
    testing::Values(ChangeCase{"none", [](FileProbe&) {}, true},
        ChangeCase{"invalid", [](FileProbe& probe) { probe.isValidMediaFile = false; }, false},
        ChangeCase{"errors", [](FileProbe& probe) { probe.hasErrors = true; }, false},
        ChangeCase{"encrypted", [](FileProbe& probe) { probe.isEncrypted = true; }, false},
        ChangeCase{"noVideoTrack", [](FileProbe& probe) { probe.hasVideoTrack = false; }, false},
        ChangeCase{"widthZero", [](FileProbe& probe) { probe.videoWidth = 0; }, false},
        ChangeCase{"widthAbsent", [](FileProbe& probe) { probe.videoWidth.reset(); }, true},
        ChangeCase{"widthNegative", [](FileProbe& probe) { probe.videoWidth = -1; }, true},
        ChangeCase{"heightZero", [](FileProbe& probe) { probe.videoHeight = 0; }, true}),
    [](const auto& row) { return row.param.name; });

class SuitabilityTest : public ProbeTestSetup
{
};

TEST_F(SuitabilityTest, aReportWithoutAWidthGivesZeroAndIsRefused)
{
    EXPECT_FALSE(isSuitable(
        probeOfStreams(R"({"codec_type": "video", "codec_name": "h264", "avg_frame_rate": "25/1"})")));
}

TEST_F(SuitabilityTest, soundAloneIsRefused)
{
    EXPECT_FALSE(isSuitable(probeOfStreams(R"({"codec_type": "audio", "codec_name": "aac"})")));
}

TEST_F(SuitabilityTest, aTextFileIsRefused)
{
    EXPECT_FALSE(isSuitable(probeReported(
        R"({"streams": [{"codec_type": "video", "codec_name": "ansi", "width": 640, "height": 480}]})",
        "notes.txt")));
}

TEST_F(SuitabilityTest, aReportOfAnErrorIsRefused)
{
    EXPECT_FALSE(isSuitable(probeReported(R"({"error": {"code": -2}})")));
}

} // namespace tarnwell::test
