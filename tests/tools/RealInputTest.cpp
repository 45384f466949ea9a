// SPDX-License-Identifier: MIT
// Inputs that are changed, cut or replaced, with the installed FFmpeg.
#include "tests/support/Files.h"
#include "tests/tools/RealTools.h"
#include "tests/tools/RefusedCall.h"
#include "tools/Child.h"
#include "tools/InputFile.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace tarnwell::test
{

class RealInputTest : public RealTools
{
protected:
    std::string input() const { return at("clip.mkv"); }
    std::string output() const { return at("out.mp4"); }

    void makeClip(int seconds) const
    {
        makeVideo(input(), "testsrc2=size=160x120:rate=25:duration=" + std::to_string(seconds), h264());
    }

    /// Shortens the input to a part of its size.
    void cutInput(double part) const
    {
        const auto size = static_cast<double>(std::filesystem::file_size(input()));
        std::filesystem::resize_file(input(), static_cast<std::uintmax_t>(part * size));
    }

    /// The exit status of ffprobe for a file that a named pipe replaces after it was opened.
    int statusForSwappedFile(std::chrono::milliseconds longest) const
    {
        const std::string path = at("swapped.mp4");
        std::filesystem::remove(path);
        writeFile(path, "a video");
        const InputFile file(path);
        std::filesystem::remove(path);
        if (::mkfifo(path.c_str(), 0600) != 0)
            return -1;
        ChildPlan plan;
        plan.program = realFfprobe;
        plan.arguments = {"-v", "quiet", path};
        plan.input = file.descriptor();
        int status = 0;
        outputOfChild(plan, status, -1, longest);
        return status;
    }
};

TEST_F(RealInputTest, anInputThatIsCutWhileFfmpegReadsIsAFailure)
{
    makeClip(20);
    // At 20 seconds of video per second, so that the encoding does not end before the file is cut.
    ToolProcess process(builtCreator, transcodeCommand(input(), output(), "transpose=2,realtime=speed=20"));
    process.waitForError("time=");
    cutInput(0.25);
    EXPECT_EQ(process.wait(), 1);
    EXPECT_FALSE(exists(output()));
    EXPECT_NE(process.errorText().find("tarnwell: the input was changed meanwhile\n"), std::string::npos)
        << process.errorText();
}

TEST_F(RealInputTest, aFileThatWasCutBeforeIsSavedAsFarAsItDecodes)
{
    makeClip(4);
    cutInput(0.75);
    ToolProcess process(builtCreator, transcodeCommand(input(), output()));
    EXPECT_EQ(process.wait(), 0) << process.errorText();
    EXPECT_GT(std::stod(report(output(), realFfprobe)["format"]["duration"].get<std::string>()), 1);
}

/// The H.264 encoder accepts even sizes only; cropping a side of one pixel leaves none.
TEST_F(RealInputTest, aPictureOfOnePixelInASideCannotBeEncoded)
{
    for (const std::string size : {"1:64", "64:1"}) {
        makeVideo(
            input(), "color=red:rate=10:duration=1:size=64x64,format=rgb24,crop=" + size, {"-c:v", "png"});
        ToolProcess process(builtCreator, transcodeCommand(input(), output()));
        EXPECT_EQ(process.wait(), 1) << size;
        EXPECT_FALSE(exists(output())) << size;
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
