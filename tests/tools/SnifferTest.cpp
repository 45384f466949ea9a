// SPDX-License-Identifier: MIT
// The probe tool with a fake ffprobe.
#include "tests/support/Files.h"
#include "tests/tools/Commands.h"
#include "tests/tools/MatrixText.h"
#include "tests/tools/ToolFolder.h"
#include "tests/tools/ToolProcess.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tarnwell::test
{

class SnifferTest : public testing::Test
{
protected:
    Words command(const std::string& name = "clip.mp4") const { return probeCommand(tools.at(name)); }

    /// Runs sniffer to its end with this script for ffprobe and returns its exit status.
    int run(const std::string& script, const ToolSetup& setup = {}, const std::string& name = "clip.mp4")
    {
        tools.setFfprobe(script);
        m_sniffer = std::make_unique<ToolProcess>(tools.sniffer(), command(name), setup);
        return m_sniffer->wait();
    }
    std::string output() const { return m_sniffer->output(); }
    std::string errors() const { return m_sniffer->errorText(); }
    const ToolProcess& sniffer() const { return *m_sniffer; }

    /// The output of sniffer for a report of ffprobe.
    std::string outputFor(const std::string& report)
    {
        EXPECT_EQ(run("print-file " + tools.addData("report.json", report) + "\n"), 0);
        EXPECT_EQ(errors(), "");
        return output();
    }

    ToolFolder tools;

private:
    std::unique_ptr<ToolProcess> m_sniffer;
};

TEST_F(SnifferTest, theNineArgumentsArePassedOnUnchanged)
{
    for (const std::string name :
        {"clip.mp4", "a b.mp4", "-i", "new\nline", "\xFF\xFE", "\xC3\xA4.mp4", "*?'\""}) {
        writeFile(tools.at(name), "");
        EXPECT_EQ(run("say-arguments\n", {}, name), 0);
        EXPECT_EQ(sniffer().saidInHex("argument "), command(name));
    }
}

TEST_F(SnifferTest, theRotationTagIsThatOfTheMatrix)
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
        EXPECT_EQ(run("print {}\\n\nexit " + std::to_string(status) + "\n"), status);
        EXPECT_EQ(output(), "{}\n");
    }
    for (const int signal : {SIGSEGV, SIGABRT, SIGKILL}) {
        EXPECT_EQ(run("print {\ndie " + std::to_string(signal) + "\n"), 128 + signal);
        EXPECT_EQ(output(), "{");
    }
}

TEST_F(SnifferTest, anErrorReportIsPrintedUnchanged)
{
    const std::string report
        = "{\n    \"error\": {\n        \"code\": -2,\n        \"string\": \"No such file\"\n    }\n}\n";
    EXPECT_EQ(run("print-file " + tools.addData("report.json", report) + "\nexit 1\n"), 1);
    EXPECT_EQ(output(), report);
}

TEST_F(SnifferTest, otherTextsArePrintedUnchanged)
{
    for (const std::string text : {"", "no report\n", "{\"streams\": [{", "\xFF\xFE{}"})
        EXPECT_EQ(outputFor(text), text);
}

TEST_F(SnifferTest, aLargeReportComesThrough)
{
    constexpr std::size_t size = 50'000'000;
    EXPECT_EQ(run("flood " + std::to_string(size) + "\n"), 0);
    EXPECT_TRUE(output() == std::string(size, 'x'));
}

TEST_F(SnifferTest, aLargeReportOnAVideoKeepsItsMembers)
{
    const std::string title(5'000'000, 't');
    const std::string text = outputFor(
        R"({"streams": [{"codec_type": "video"}], "format": {"tags": {"title": ")" + title + "\"}}}");
    EXPECT_TRUE(nlohmann::json::parse(text)["format"]["tags"]["title"] == title);
}

TEST_F(SnifferTest, aReportInPiecesComesThrough)
{
    EXPECT_EQ(run("print {\"str\nsleep 5\nprint eams\": \nsleep 5\nprint []}\n"), 0);
    EXPECT_EQ(output(), "{\"streams\": []}");
}

TEST_F(SnifferTest, errorMessagesOfFfprobeAreWritten)
{
    EXPECT_EQ(run("error something is odd\\n\nprint {}\n"), 0);
    EXPECT_EQ(errors(), "something is odd\n");
}

TEST_F(SnifferTest, anFfprobeThatCannotBeRunIsReported)
{
    tools.breakFfprobe();
    ToolProcess process(tools.sniffer(), command());
    EXPECT_EQ(process.wait(), 127);
    EXPECT_EQ(process.output(), "");
    for (const char* part : {"ffprobe cannot be run", "install the package ffmpeg"})
        EXPECT_NE(process.errorText().find(part), std::string::npos) << process.errorText();
}

TEST_F(SnifferTest, doesNotWaitForAnFfprobeThatHangsAfterItsReport)
{
    run("say-pid\nprint {}\nclose 1\nhang\n");
    EXPECT_EQ(output(), "{}");
    waitUntilGone(std::stoi(sniffer().said("pid ").at(0)));
}

TEST_F(SnifferTest, itsOwnEndEndsFfprobe)
{
    tools.setFfprobe("ignore-termination\nsay-pid\nhang\n");
    for (const int signal : {SIGKILL, SIGTERM}) {
        ToolProcess process(tools.sniffer(), command());
        const int ffprobe = std::stoi(process.waitForError("pid "));
        ASSERT_TRUE(isRunning(ffprobe));
        process.signal(signal);
        process.wait();
        waitUntilGone(ffprobe);
    }
}

TEST_F(SnifferTest, ffprobeGetsTheStandardStreamsAndNothingElse)
{
    const int another = ::dup(STDERR_FILENO); // inherited
    EXPECT_EQ(run("say-descriptors\n"), 0);
    ::close(another);
    const auto descriptors = sniffer().said("descriptor ");
    ASSERT_EQ(descriptors.size(), 3U) << errors();
    EXPECT_EQ(descriptors[0], "0 /dev/null");
}

TEST_F(SnifferTest, anyStreamsMayBeClosed)
{
    for (const std::vector<int>& closed : std::vector<std::vector<int>>{{0}, {2}, {0, 2}}) {
        EXPECT_EQ(run("print {}\n", {.closed = closed}), 0) << testing::PrintToString(closed);
        EXPECT_EQ(output(), "{}") << testing::PrintToString(closed);
    }
    for (const std::vector<int>& closed : std::vector<std::vector<int>>{{1}, {0, 1}, {0, 1, 2}})
        EXPECT_EQ(run("flood 1000000\nexit 3\n", {.closed = closed}), 3) << testing::PrintToString(closed);
}

TEST_F(SnifferTest, aPipeWithANameIsRefusedInsteadOfWaitedFor)
{
    ASSERT_EQ(::mkfifo(tools.at("pipe.mp4").c_str(), 0600), 0);
    EXPECT_EQ(run("hang\n", {}, "pipe.mp4"), 1);
    EXPECT_TRUE(nlohmann::json::parse(output()).contains("error"));
    EXPECT_EQ(errors(), "tarnwell: " + tools.at("pipe.mp4") + ": not a file\n");
}

TEST_F(SnifferTest, theEnvironmentHoldsNothingThatChangesFfprobe)
{
    EXPECT_EQ(
        run("say-environment\n",
            {.variables = {"FFREPORT=file=/dev/full", "LD_LIBRARY_PATH=/nowhere", "AV_LOG_FORCE_COLOR=1"}}),
        0);
    EXPECT_EQ(sniffer().saidInHex("variable "), Words({"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8"}));
}

} // namespace tarnwell::test
