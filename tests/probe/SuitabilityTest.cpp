// SPDX-License-Identifier: MIT
#include "probe/FileProbe.h"
#include "tests/probe/ProbeTestSetup.h"

namespace tarnwell::test
{

/// Starts from a description that is suitable and changes one fact of it.
class SuitabilityTest : public ProbeTestSetup
{
protected:
    FileProbe m_probe
        = probeOfStreams(R"({"codec_type": "video", "codec_name": "h264", "width": 640, "height": 480})");
};

TEST_F(SuitabilityTest, aReadableVideoIsSuitable)
{
    EXPECT_TRUE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, anInvalidFileIsNot)
{
    m_probe.isValidMediaFile = false;
    EXPECT_FALSE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, aFileWithErrorsIsNot)
{
    m_probe.hasErrors = true;
    EXPECT_FALSE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, anEncryptedFileIsNot)
{
    m_probe.isEncrypted = true;
    EXPECT_FALSE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, aFileWithoutAVideoTrackIsNot)
{
    m_probe.hasVideoTrack = false;
    EXPECT_FALSE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, aWidthOfZeroIsNot)
{
    m_probe.videoWidth = 0;
    EXPECT_FALSE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, anAbsentWidthIs)
{
    m_probe.videoWidth.reset();
    EXPECT_TRUE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, aNegativeWidthIs)
{
    m_probe.videoWidth = -1;
    EXPECT_TRUE(isSuitable(m_probe));
}

TEST_F(SuitabilityTest, theHeightIsNotLookedAt)
{
    m_probe.videoHeight = 0;
    EXPECT_TRUE(isSuitable(m_probe));
}

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
