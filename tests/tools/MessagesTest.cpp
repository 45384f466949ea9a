// SPDX-License-Identifier: MIT
// Messages of the tools on standard error other than status lines.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"

#include <filesystem>
#include <string>

namespace tarnwell::test
{

class MessagesTest : public CreatorTest
{
protected:
    /// Runs creator with a call that fails once, see tests/faults/failingCalls.cpp.
    static ToolSetup failing(const std::string& call)
    {
        ToolSetup setup;
        setup.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
            "TARNWELL_FAILS=" + call, "TARNWELL_FAILED=/dev/null"};
        return setup;
    }
};

TEST_F(MessagesTest, aMessageWithoutAnEndOfLineIsPrinted)
{
    tools.setFfmpeg("error the disk is on fire\nexit 1\n");
    ToolProcess creator(tools.creator(), transcode());
    EXPECT_EQ(creator.wait(), 1);
    EXPECT_TRUE(creator.errorText().ends_with("the disk is on fire\n")) << creator.errorText();

    tools.setFfprobe("error something is odd\nprint {}\n");
    ToolProcess sniffer(tools.sniffer(), {"-v", "quiet", input()});
    EXPECT_EQ(sniffer.wait(), 0);
    EXPECT_EQ(sniffer.errorText(), "something is odd\n");
}

TEST_F(MessagesTest, aMoveThatFailsIsReported)
{
    setGoodFfmpeg();
    for (const std::string call : {"linkat 1", "fsync 1"}) {
        ToolProcess creator(tools.creator(), transcode(), failing(call));
        EXPECT_EQ(creator.wait(), 1);
        EXPECT_NE(creator.errorText().find("tarnwell: the output could not be "), std::string::npos)
            << call << ": " << creator.errorText();
    }
}

/// The window treats a line with "time=" as a status line and stops if it has no time stamp.
TEST_F(MessagesTest, aPathIsNeverTakenForAStatusLine)
{
    const std::string folder = tools.at("time=9:99 01:02:03.04/");
    std::filesystem::create_directory(folder);
    std::filesystem::copy_file(tools.creator(), folder + "creator");
    std::filesystem::copy_file(tools.sniffer(), folder + "sniffer");
    for (const std::string tool : {"ffmpeg", "ffprobe"}) {
        writeFile(folder + tool,
            "\x7F"
            "ELF and no more");
        std::filesystem::permissions(folder + tool, std::filesystem::perms::owner_all);
    }
    const std::string video = folder + "time=9:99.mp4";
    writeFile(video, "no video");
    ToolProcess creator(folder + "creator", transcode(video, folder + "time=.mp4"));
    EXPECT_EQ(creator.wait(), 1);
    ToolProcess sniffer(folder + "sniffer", {"-v", "quiet", folder});
    EXPECT_EQ(sniffer.wait(), 1);
    for (const std::string& text : {creator.errorText(), sniffer.errorText()}) {
        EXPECT_NE(text.find("time:9:99 01.02:03.04/"), std::string::npos) << text;
        EXPECT_EQ(text.find("time="), std::string::npos) << text;
    }
}

TEST_F(MessagesTest, anUnknownArgumentIsNeverTakenForAStatusLine)
{
    ToolProcess creator(tools.creator(), {"time=9:99"});
    EXPECT_EQ(creator.wait(), 2);
    EXPECT_EQ(creator.errorText().find("time="), std::string::npos) << creator.errorText();
}

} // namespace tarnwell::test
