// SPDX-License-Identifier: MIT
#include "tests/probe/ProbeTestSetup.h"
#include "tests/support/Files.h"
#include "tests/support/SilentStop.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <limits>
#include <sys/stat.h>

namespace tarnwell::test
{

namespace
{

constexpr const char* oneVideo
    = R"({"streams": [{"codec_type": "video", "codec_name": "h264", "width": 640, "height": 480}]})";

void expectNothingRead(const FileProbe& probe)
{
    EXPECT_FALSE(probe.isValidMediaFile);
    EXPECT_FALSE(probe.isEncrypted);
    EXPECT_FALSE(probe.hasVideoTrack);
    EXPECT_FALSE(probe.hasAudioTrack);
    EXPECT_FALSE(probe.hasSubtitleTrack);
    EXPECT_FALSE(probe.hasAudioTrackWhichHasMoreThanTwoChannels);
    EXPECT_EQ(probe.duration, 0);
    EXPECT_EQ(probe.bitRate, 0);
    EXPECT_FALSE(probe.videoWidth);
    EXPECT_FALSE(probe.videoHeight);
    EXPECT_FALSE(probe.videoRatio);
    EXPECT_EQ(probe.tagRotateValue, 0);
    EXPECT_TRUE(probe.tracksInfo.empty());
    EXPECT_TRUE(probe.metadata.empty());
}

} // namespace

class FileProbeFailureTest : public ProbeTestSetup
{
protected:
    /// Expects default values in all flags, and `lines` printed lines.
    void expectUnreadable(const std::function<FileProbe()>& construction, long lines)
    {
        testing::internal::CaptureStdout();
        const FileProbe description = construction();
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), lines) << printed;
        EXPECT_FALSE(printed.starts_with("\n"));
        EXPECT_FALSE(description.hasErrors);
        EXPECT_EQ(description.numberOfStreams, 0);
        expectNothingRead(description);
        EXPECT_EQ(description.fileFullPath, path("clip.mp4"));
        EXPECT_EQ(description.fileSize, 15U);
    }

    void expectUnreadable(const std::string& report)
    {
        SCOPED_TRACE(report.substr(0, 40));
        expectUnreadable([&] { return probeReported(report); }, 1);
    }
};

TEST_F(FileProbeFailureTest, otherOutputPrintsOneLineAndSetsNothing)
{
    expectUnreadable("rubbish\nin two lines");
    expectUnreadable(R"({"streams": [{"codec_type": "video")");
    expectUnreadable(std::string(oneVideo) + "x");
    expectUnreadable(oneVideo + std::string("\0", 1));
    expectUnreadable(oneVideo + std::string("\0{}", 3));
    expectUnreadable(std::string("\0\0\0\0", 4));
    expectUnreadable("{\"format\": {\"filename\": \"\xFF\"}}");
}

TEST_F(FileProbeFailureTest, noOutputPrintsOneLineAndSetsNothing)
{
    expectUnreadable("");
}

TEST_F(FileProbeFailureTest, aToolThatFailsWithoutAReportSetsNothing)
{
    m_tools.setSniffer("exit 1");
    expectUnreadable([this] { return probe(); }, 1);
}

TEST_F(FileProbeFailureTest, aToolThatDiesInTheMiddleOfItsReportSetsNothing)
{
    m_tools.setSniffer("print {\"streams\": [{\"codec_type\"\ndie 9");
    expectUnreadable([this] { return probe(); }, 1);
}

TEST_F(FileProbeFailureTest, aToolThatFailsAfterItsReportHasReported)
{
    m_tools.setSniffer(std::string("print ") + oneVideo + "\nexit 1");
    EXPECT_TRUE(probe().isValidMediaFile);
    m_tools.setSniffer(std::string("print ") + oneVideo + "\ndie 11");
    EXPECT_TRUE(probe().isValidMediaFile);
}

TEST_F(FileProbeFailureTest, standardErrorIsNoPartOfTheReport)
{
    m_tools.setSniffer(std::string("error a warning\\n\nprint ") + oneVideo);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(probe().isValidMediaFile);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a warning\n");
}

TEST_F(FileProbeFailureTest, aToolThatCannotBeStartedPrintsTheReasonAndSetsNothing)
{
    writeFile(path("sniffer"), "not a program");
    testing::internal::CaptureStdout();
    const FileProbe description = probe();
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(printed.starts_with("sniffer could not be started: Permission denied\n")) << printed;
    EXPECT_FALSE(description.hasErrors);
    expectNothingRead(description);
}

TEST_F(FileProbeFailureTest, aReportWithAnErrorSetsItsFlagAlone)
{
    testing::internal::CaptureStdout();
    const FileProbe description
        = probeReported(R"({"error": {"code": -1094995529, "string": "Invalid data"}})");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(description.hasErrors);
    EXPECT_EQ(description.numberOfStreams, 0);
    expectNothingRead(description);
}

TEST_F(FileProbeFailureTest, anErrorHidesTheStreams)
{
    const std::string streams
        = R"("streams": [{"codec_type": "video", "codec_name": "h264", "width": 1, "height": 1}]})";
    for (const std::string error : {"{}", "null", "false", "0", "\"\"", "[]"}) {
        SCOPED_TRACE(error);
        const FileProbe description = probeReported("{\"error\": " + error + ", " + streams);
        EXPECT_TRUE(description.hasErrors);
        EXPECT_EQ(description.numberOfStreams, 0);
        expectNothingRead(description);
    }
}

TEST_F(FileProbeFailureTest, withoutStreamsTheFileIsNotValid)
{
    for (const std::string report :
        {"{}", R"({"streams": []})", R"({"streams": null, "format": {"duration": "5"}})",
            R"({"streams": "two"})", R"({"streams": {}})", "[]", "null", "7", "\"streams\""}) {
        SCOPED_TRACE(report);
        testing::internal::CaptureStdout();
        const FileProbe description = probeReported(report);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_FALSE(description.hasErrors);
        EXPECT_EQ(description.numberOfStreams, 0);
        expectNothingRead(description);
    }
}

TEST_F(FileProbeFailureTest, aTextFileIsNeverValid)
{
    for (const std::string name : {"notes.txt", "notes.TXT", "notes.TxT", "notes.mp4.txt", ".txt"}) {
        SCOPED_TRACE(name);
        const FileProbe description = probeReported(oneVideo, name);
        EXPECT_EQ(description.numberOfStreams, 1);
        EXPECT_FALSE(description.hasErrors);
        expectNothingRead(description);
    }
}

TEST_F(FileProbeFailureTest, everyOtherNameIsValid)
{
    for (const std::string name :
        {"clip", "clip.", "clip.text", "clip.txt.mp4", "txt", "clip.tx", "clip.txtx"}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(probeReported(oneVideo, name).isValidMediaFile);
    }
}

TEST_F(FileProbeFailureTest, aTextFoldersFileIsValid)
{
    std::filesystem::create_directory(path("folder.txt"));
    EXPECT_TRUE(probeReported(oneVideo, "folder.txt/clip").isValidMediaFile);
}

TEST_F(FileProbeFailureTest, aReportLargerThanAPipeIsReadWhole)
{
    constexpr std::size_t fiveMegabytes = 5000000;
    const std::string comment(fiveMegabytes, 'x');
    const FileProbe description = probeReported(
        R"({"streams": [{"codec_type": "audio"}], "format": {"tags": {"comment": ")" + comment + "\"}}}");
    EXPECT_TRUE(description.isValidMediaFile);
    EXPECT_EQ(metadataOf(description, "Comment").size(), fiveMegabytes);
}

TEST_F(FileProbeFailureTest, aNumberBeyondDoubleDoesNotMakeTheReportUnreadable)
{
    for (const std::string number : {"1e999", "\"1e999\""}) {
        SCOPED_TRACE(number);
        const FileProbe description
            = probeReported(R"({"streams": [{"codec_type": "audio"}], "format": {"duration": )" + number
                + R"(, "bit_rate": )" + number + "}}");
        EXPECT_TRUE(description.isValidMediaFile);
        EXPECT_EQ(description.duration, std::numeric_limits<double>::infinity());
        EXPECT_EQ(description.bitRate, std::numeric_limits<std::int64_t>::max());
    }
}

TEST_F(FileProbeFailureTest, aFloodOfRubbishIsReadToItsEnd)
{
    m_tools.setSniffer("flood 5000000\ntouch " + path("done"));
    expectUnreadable([this] { return probe(); }, 1);
    EXPECT_TRUE(exists(path("done")));
}

TEST_F(FileProbeFailureTest, aMissingFilePrintsBothQueriesAndIsProbed)
{
    m_tools.setSniffer("print {\"error\": {}}");
    const std::string missing = path("missing.mp4");
    testing::internal::CaptureStdout();
    const FileProbe description(missing, m_tools.context());
    const std::string line = "Failed to get file attributes for local path: " + missing
        + " with error: No such file or directory\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line);
    EXPECT_EQ(description.fileSize, 0U);
    EXPECT_EQ(description.fileSizeHuman, "Unknown File Size");
    EXPECT_EQ(description.fileFullPath, missing);
    EXPECT_TRUE(description.hasErrors);
}

TEST_F(FileProbeFailureTest, aPipePrintsBothQueriesAndMayBeValid)
{
    m_tools.setSniffer(std::string("print ") + oneVideo);
    const std::string pipe = path("pipe.mp4");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    testing::internal::CaptureStdout();
    const FileProbe description(pipe, m_tools.context());
    const std::string line = "Failed to get a size attribute from path: " + pipe + "\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line);
    EXPECT_EQ(description.fileSize, 0U);
    EXPECT_EQ(description.fileSizeHuman, "Unknown File Size");
    EXPECT_TRUE(description.isValidMediaFile);
}

using FileProbeDeathTest = FileProbeFailureTest;

TEST_F(FileProbeDeathTest, aMissingToolStopsTheProgram)
{
    EXPECT_SILENT_STOP(probe());
}

TEST_F(FileProbeDeathTest, channelsThatAreNoNumberStopTheProgram)
{
    for (const std::string channels : {"\"2\"", "\"stereo\"", "[]", "{}"}) {
        SCOPED_TRACE(channels);
        EXPECT_SILENT_STOP(probeOfStreams(R"({"codec_type": "audio", "channels": )" + channels + "}"));
    }
}

TEST_F(FileProbeDeathTest, channelsOfAnyStreamAreRead)
{
    EXPECT_SILENT_STOP(
        probeOfStreams(R"({"codec_type": "data"}, {"codec_type": "data", "channels": "none"})"));
}

TEST_F(FileProbeDeathTest, aTracksDurationBeyond64BitsStopsTheProgram)
{
    for (const std::string duration : {"1e30", "\"1e30\"", "1e999", "\"1e999\""}) {
        SCOPED_TRACE(duration);
        EXPECT_SILENT_STOP(probeOfStreams(R"({"codec_type": "audio", "duration": )" + duration + "}"));
    }
}

} // namespace tarnwell::test
