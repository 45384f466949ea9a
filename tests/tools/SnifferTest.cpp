// SPDX-License-Identifier: MIT
// The probe tool, with fakes for ffprobe.
#include "tests/support/Files.h"
#include "tests/support/Reports.h"
#include "tests/tools/MatrixText.h"
#include "tests/tools/ToolFolder.h"
#include "tests/tools/ToolProcess.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tarnwell::test
{

class SnifferTest : public testing::Test
{
protected:
    std::vector<std::string> arguments(const std::string& path = "clip.mp4") const
    {
        return {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
            "-show_error", tools.at(path)};
    }

    /// What comes out for what ffprobe prints.
    std::string outputFor(const std::string& report)
    {
        tools.setFfprobe("print-file " + tools.addData("report.json", report) + "\n");
        ToolProcess sniffer(tools.sniffer(), arguments());
        EXPECT_EQ(sniffer.wait(), 0);
        EXPECT_EQ(sniffer.errorText(), "");
        return sniffer.output();
    }

    ToolFolder tools;
};

TEST_F(SnifferTest, theNineArgumentsArePassedOnUnchanged)
{
    tools.setFfprobe("say-arguments\n");
    for (const std::string name :
        {"clip.mp4", "a b.mp4", "-i", "new\nline", "\xFF\xFE", "\xC3\xA4.mp4", "*?'\""}) {
        writeFile(tools.at(name), "");
        ToolProcess sniffer(tools.sniffer(), arguments(name));
        EXPECT_EQ(sniffer.wait(), 0);
        EXPECT_EQ(sniffer.saidInHex("argument "), arguments(name));
    }
}

TEST_F(SnifferTest, theRotationTagIsTheTrueOne)
{
    const nlohmann::ordered_json report = {{"streams",
        {{{"codec_type", "video"}, {"tags", {{"rotate", "5"}}},
            {"side_data_list",
                {{{"side_data_type", "Display Matrix"}, {"displaymatrix", matrixText(0, 1, -1, 0)}}}}}}}};
    auto expected = report;
    expected["streams"][0]["tags"]["rotate"] = "90";
    EXPECT_EQ(nlohmann::ordered_json::parse(outputFor(report.dump())).dump(), expected.dump());
}

TEST_F(SnifferTest, theExitStatusIsThatOfFfprobe)
{
    for (const int status : {0, 1, 2, 77, 255}) {
        tools.setFfprobe("print {}\\n\nexit " + std::to_string(status) + "\n");
        ToolProcess sniffer(tools.sniffer(), arguments());
        EXPECT_EQ(sniffer.wait(), status);
        EXPECT_EQ(sniffer.output(), "{}\n");
    }
}

TEST_F(SnifferTest, aCrashOfFfprobeShowsInTheStatus)
{
    for (const int signal : {SIGSEGV, SIGABRT, SIGKILL}) {
        tools.setFfprobe("print {\ndie " + std::to_string(signal) + "\n");
        ToolProcess sniffer(tools.sniffer(), arguments());
        EXPECT_EQ(sniffer.wait(), 128 + signal);
        EXPECT_EQ(sniffer.output(), "{");
    }
}

TEST_F(SnifferTest, anErrorReportComesThrough)
{
    const std::string report
        = "{\n    \"error\": {\n        \"code\": -2,\n        \"string\": \"No such file\"\n    }\n}\n";
    tools.setFfprobe("print-file " + tools.addData("report.json", report) + "\nexit 1\n");
    ToolProcess sniffer(tools.sniffer(), arguments());
    EXPECT_EQ(sniffer.wait(), 1);
    EXPECT_EQ(sniffer.output(), report);
}

TEST_F(SnifferTest, whatIsNoReportComesThrough)
{
    for (const std::string text : {"", "no report\n", "{\"streams\": [{", "\xFF\xFE{}"})
        EXPECT_EQ(outputFor(text), text);
}

TEST_F(SnifferTest, aLargeReportComesThrough)
{
    constexpr std::size_t size = 50'000'000;
    tools.setFfprobe("flood " + std::to_string(size) + "\n");
    ToolProcess sniffer(tools.sniffer(), arguments());
    EXPECT_EQ(sniffer.wait(), 0);
    EXPECT_EQ(sniffer.output(), std::string(size, 'x'));
}

TEST_F(SnifferTest, aLargeReportOnAVideoKeepsItsMembers)
{
    const std::string title(5'000'000, 't');
    const std::string text = outputFor(
        R"({"streams": [{"codec_type": "video"}], "format": {"tags": {"title": ")" + title + "\"}}}");
    EXPECT_EQ(nlohmann::json::parse(text)["format"]["tags"]["title"], title);
}

TEST_F(SnifferTest, aReportInPiecesComesThrough)
{
    tools.setFfprobe("print {\"str\nsleep 5\nprint eams\": \nsleep 5\nprint []}\n");
    ToolProcess sniffer(tools.sniffer(), arguments());
    EXPECT_EQ(sniffer.wait(), 0);
    EXPECT_EQ(sniffer.output(), "{\"streams\": []}");
}

TEST_F(SnifferTest, complaintsOfFfprobeComeThrough)
{
    tools.setFfprobe("error something is odd\\n\nprint {}\n");
    ToolProcess sniffer(tools.sniffer(), arguments());
    EXPECT_EQ(sniffer.wait(), 0);
    EXPECT_EQ(sniffer.errorText(), "something is odd\n");
}

TEST_F(SnifferTest, anFfprobeThatCannotBeRunIsToldOfPlainly)
{
    tools.breakFfprobe();
    ToolProcess sniffer(tools.sniffer(), arguments());
    EXPECT_EQ(sniffer.wait(), 127);
    EXPECT_EQ(sniffer.output(), "");
    EXPECT_NE(sniffer.errorText().find("ffprobe cannot be run"), std::string::npos) << sniffer.errorText();
    EXPECT_NE(sniffer.errorText().find("install the package ffmpeg"), std::string::npos)
        << sniffer.errorText();
}

TEST_F(SnifferTest, doesNotWaitForAnFfprobeThatHangsAfterItsReport)
{
    tools.setFfprobe("say-pid\nprint {}\nclose 1\nhang\n");
    ToolProcess sniffer(tools.sniffer(), arguments());
    const int ffprobe = std::stoi(sniffer.waitForError("pid "));
    sniffer.wait();
    EXPECT_EQ(sniffer.output(), "{}");
    waitUntilGone(ffprobe);
}

TEST_F(SnifferTest, itsOwnEndIsTheEndOfFfprobe)
{
    for (const int signal : {SIGKILL, SIGTERM}) {
        tools.setFfprobe("ignore-termination\nsay-pid\nhang\n");
        ToolProcess sniffer(tools.sniffer(), arguments());
        const int ffprobe = std::stoi(sniffer.waitForError("pid "));
        ASSERT_TRUE(isRunning(ffprobe));
        sniffer.signal(signal);
        sniffer.wait();
        waitUntilGone(ffprobe);
    }
}

TEST_F(SnifferTest, ffprobeGetsTheStandardStreamsAndNothingElse)
{
    tools.setFfprobe("say-descriptors\n");
    const int another = ::dup(STDERR_FILENO); // inherited
    ToolProcess sniffer(tools.sniffer(), arguments());
    EXPECT_EQ(sniffer.wait(), 0);
    ::close(another);
    const auto descriptors = sniffer.said("descriptor ");
    ASSERT_EQ(descriptors.size(), 3U) << sniffer.errorText();
    EXPECT_EQ(descriptors[0], "0 /dev/null");
}

TEST_F(SnifferTest, worksWithItsOtherStreamsClosed)
{
    tools.setFfprobe("print {}\n");
    for (const std::vector<int>& closed : std::vector<std::vector<int>>{{0}, {2}, {0, 2}}) {
        SCOPED_TRACE(testing::PrintToString(closed));
        ToolSetup setup;
        setup.closed = closed;
        ToolProcess sniffer(tools.sniffer(), arguments(), setup);
        EXPECT_EQ(sniffer.wait(), 0);
        EXPECT_EQ(sniffer.output(), "{}");
    }
}

TEST_F(SnifferTest, endsWhereNobodyTakesItsOutput)
{
    tools.setFfprobe("flood 1000000\nexit 3\n");
    for (const std::vector<int>& closed : std::vector<std::vector<int>>{{1}, {0, 1}, {0, 1, 2}}) {
        SCOPED_TRACE(testing::PrintToString(closed));
        ToolSetup setup;
        setup.closed = closed;
        ToolProcess sniffer(tools.sniffer(), arguments(), setup);
        EXPECT_EQ(sniffer.wait(), 3);
    }
}

TEST_F(SnifferTest, aPipeWithANameIsRefusedInsteadOfWaitedFor)
{
    tools.setFfprobe("hang\n");
    ASSERT_EQ(::mkfifo(tools.at("pipe.mp4").c_str(), 0600), 0);
    ToolProcess sniffer(tools.sniffer(), arguments("pipe.mp4"));
    EXPECT_EQ(sniffer.wait(), 1);
    EXPECT_TRUE(nlohmann::json::parse(sniffer.output()).contains("error"));
    EXPECT_EQ(sniffer.errorText(), "tarnwell: " + tools.at("pipe.mp4") + ": not a file\n");
}

TEST_F(SnifferTest, theEnvironmentHoldsNothingThatChangesFfprobe)
{
    tools.setFfprobe("say-environment\n");
    ToolSetup setup;
    setup.variables = {"FFREPORT=file=/dev/full", "LD_LIBRARY_PATH=/nowhere", "AV_LOG_FORCE_COLOR=1"};
    ToolProcess sniffer(tools.sniffer(), arguments(), setup);
    EXPECT_EQ(sniffer.wait(), 0);
    for (const auto& variable : sniffer.saidInHex("variable ")) {
        EXPECT_FALSE(variable.starts_with("LD_")) << variable;
        EXPECT_FALSE(variable.starts_with("FFREPORT")) << variable;
        EXPECT_FALSE(variable.starts_with("AV_")) << variable;
    }
}

} // namespace tarnwell::test
