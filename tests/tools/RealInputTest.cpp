// SPDX-License-Identifier: MIT
// Inputs that are changed, cut or replaced, with the installed FFmpeg.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/RefusedCall.h"
#include "tests/tools/ToolProcess.h"
#include "tools/Child.h"
#include "tools/InputFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

const std::string creator = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/creator";

} // namespace

class RealInputTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return m_folder.path() + name; }

    void makeVideo(const std::string& size, int seconds) const
    {
        const std::string source = "testsrc2=size=" + size + ":rate=25:duration=" + std::to_string(seconds);
        ASSERT_EQ(runTool("/usr/bin/ffmpeg",
                      {"-v", "error", "-nostdin", "-f", "lavfi", "-i", source, "-c:v", "libx264", "-preset",
                          "ultrafast", "-pix_fmt", "yuv420p", "-y", at("clip.mkv")}),
            0);
    }

    std::vector<std::string> transcode() const
    {
        return {"-i", at("clip.mkv"), "-pix_fmt", "yuv420p", "-vf", "transpose=2", "-metadata:s:v",
            "rotate=0", "-y", at("out.mp4")};
    }

    /// The exit status of ffprobe for a file that a named pipe replaces after it was opened.
    int statusForSwappedFile(std::chrono::milliseconds longest) const
    {
        const std::string path = at("swapped.mp4");
        std::filesystem::remove(path);
        writeFile(path, "a video");
        const InputFile input(path);
        std::filesystem::remove(path);
        if (::mkfifo(path.c_str(), 0600) != 0)
            return -1;
        ChildPlan plan;
        plan.program = "/usr/bin/ffprobe";
        plan.arguments = {"-v", "quiet", path};
        plan.input = input.descriptor();
        int status = 0;
        outputOfChild(plan, status, -1, longest);
        return status;
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(RealInputTest, anInputThatIsCutWhileFfmpegReadsIsAFailure)
{
    makeVideo("640x360", 20);
    ToolProcess process(creator, transcode());
    process.waitForError("time=");
    std::filesystem::resize_file(at("clip.mkv"), std::filesystem::file_size(at("clip.mkv")) / 2);
    EXPECT_EQ(process.wait(), 1);
    EXPECT_FALSE(exists(at("out.mp4")));
    EXPECT_NE(process.errorText().find("tarnwell: the input was changed meanwhile\n"), std::string::npos)
        << process.errorText();
}

TEST_F(RealInputTest, aFileThatWasCutBeforeIsSavedAsFarAsItDecodes)
{
    makeVideo("320x240", 4);
    std::filesystem::resize_file(at("clip.mkv"), std::filesystem::file_size(at("clip.mkv")) * 3 / 4);
    ToolProcess process(creator, transcode());
    EXPECT_EQ(process.wait(), 0) << process.errorText();
    ToolProcess probe("/usr/bin/ffprobe",
        {"-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", at("out.mp4")});
    EXPECT_EQ(probe.wait(), 0);
    EXPECT_GT(std::stod(probe.output()), 1);
}

/// The H.264 encoder accepts even sizes only; cropping a side of one pixel leaves none.
TEST_F(RealInputTest, aPictureOfOnePixelInASideCannotBeEncoded)
{
    for (const std::string size : {"1:64", "64:1"}) {
        const std::string source = "color=red:rate=10:duration=1:size=64x64,format=rgb24,crop=" + size;
        ASSERT_EQ(runTool("/usr/bin/ffmpeg",
                      {"-v", "error", "-nostdin", "-f", "lavfi", "-i", source, "-c:v", "png", "-y",
                          at("clip.mkv")}),
            0);
        ToolProcess process(creator, transcode());
        EXPECT_EQ(process.wait(), 1) << size;
        EXPECT_FALSE(exists(at("out.mp4"))) << size;
        EXPECT_NE(process.errorText(), "") << size;
    }
}

TEST_F(RealInputTest, aPipeThatReplacesTheFileBlocksNobody)
{
    constexpr int killed = 128 + SIGKILL;
    const int status = statusForSwappedFile(std::chrono::seconds(60));
    EXPECT_NE(status, killed);
    EXPECT_NE(status, 0);
    EXPECT_TRUE(holdsWithout(RefusedCall::FileRules,
        [this] { return statusForSwappedFile(std::chrono::milliseconds(300)) == killed; }));
}

} // namespace tarnwell::test
