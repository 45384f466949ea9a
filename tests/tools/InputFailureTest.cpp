// SPDX-License-Identifier: MIT
// Inputs that change or cannot be read during the run of ffmpeg. The fake ffmpeg succeeds nevertheless.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace tarnwell::test
{

class InputFailureTest : public CreatorTest
{
protected:
    void SetUp() override
    {
        CreatorTest::SetUp();
        writeFile(video(), std::string(100000, 'x'));
        std::filesystem::last_write_time(
            video(), std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    }

    std::string video() const { return tools.at("other.mov"); }

    std::vector<std::string> flag() const
    {
        return {"-i", video(), "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=90", "-y", output()};
    }

    /// Runs creator, calls the action during the run of ffmpeg, and returns the exit status.
    int statusWith(const std::vector<std::string>& arguments, const std::function<void()>& action)
    {
        const std::string done = tools.at("done");
        std::filesystem::remove(done);
        setGoodFfmpeg("say-pid\nwait-for " + done + "\n");
        ToolProcess creator(tools.creator(), arguments);
        creator.waitForError("pid ");
        action();
        writeFile(done, "");
        const int status = creator.wait();
        m_errors = creator.errorText();
        return status;
    }

    void expectFailure(const std::function<void()>& action)
    {
        for (const auto& arguments : {transcode(video(), output()), flag()}) {
            EXPECT_EQ(statusWith(arguments, action), 1);
            EXPECT_FALSE(exists(output()));
            EXPECT_NE(m_errors.find("tarnwell: the input was changed meanwhile\n"), std::string::npos)
                << m_errors;
            EXPECT_EQ(m_errors.find("pid ", m_errors.find("pid ") + 1), std::string::npos)
                << "another attempt was made";
            SetUp();
        }
    }

    /// Runs creator with an ffmpeg that prints the message and succeeds, and with a failing call; returns the
    /// exit status.
    int statusAfterMessage(const std::string& message, const std::string& call)
    {
        setGoodFfmpeg(message.empty() ? "" : "error " + message + "\\n\n");
        ToolSetup setup;
        setup.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
            "TARNWELL_FAILS=" + call, "TARNWELL_FAILED=/dev/null"};
        ToolProcess creator(tools.creator(), transcode(video(), output()), setup);
        const int status = creator.wait();
        m_errors = creator.errorText();
        return status;
    }

    std::string m_errors;
};

TEST_F(InputFailureTest, anInputThatIsCutIsAFailure)
{
    expectFailure([this] { std::filesystem::resize_file(video(), 50000); });
}

TEST_F(InputFailureTest, anInputThatGrowsIsAFailure)
{
    expectFailure([this] { std::ofstream(video(), std::ios::app) << "more"; });
}

TEST_F(InputFailureTest, anInputThatIsOverwrittenIsAFailure)
{
    expectFailure([this] {
        std::fstream file(video(), std::ios::in | std::ios::out);
        file << "other";
    });
}

TEST_F(InputFailureTest, anInputThatIsOnlyReadRenamedOrReplacedIsNoFailure)
{
    EXPECT_EQ(statusWith(transcode(video(), output()), [this] { contentsOf(video()); }), 0) << m_errors;
    const auto rename = [this] { std::filesystem::rename(video(), tools.at("renamed.mov")); };
    EXPECT_EQ(statusWith(transcode(video(), output()), rename), 0) << m_errors;
    writeFile(video(), "an older video");
    const auto replace = [this] {
        writeFile(tools.at("another"), "another video");
        std::filesystem::rename(tools.at("another"), video());
    };
    EXPECT_EQ(statusWith(transcode(video(), output()), replace), 0) << m_errors;
    EXPECT_EQ(contentsOf(output()), movie());
}

TEST_F(InputFailureTest, aStillOfAVideoThatIsBeingWrittenIsMade)
{
    const auto grow = [this] { std::ofstream(video(), std::ios::app) << "more"; };
    const std::vector<std::string> picture
        = {"-v", "quiet", "-ss", "1", "-i", video(), "-frames:v", "1", "-y", output()};
    EXPECT_EQ(statusWith(picture, grow), 0);
    EXPECT_EQ(contentsOf(output()), contentsOf(tools.addData("expected", contentsOf(output()))));
    EXPECT_TRUE(contentsOf(output()).starts_with("\xFF\xD8")) << "no JPEG";
}

TEST_F(InputFailureTest, aReadErrorIsAFailureEvenIfFfmpegSucceeds)
{
    EXPECT_EQ(statusAfterMessage("file:other.mov: Input/output error", "pread 1"), 1);
    EXPECT_NE(m_errors.find("the input cannot be read to its end: Input/output error"), std::string::npos)
        << m_errors;
    EXPECT_FALSE(exists(output()));
}

TEST_F(InputFailureTest, aTemporaryReadErrorIsFollowedByAnotherRun)
{
    // The fake reads its script before the first run; the action replaces it for the second one.
    const std::string done = tools.at("done");
    for (const std::string ending : {"exit 0\n", "exit 1\n"}) {
        std::filesystem::remove(done);
        std::filesystem::remove(output());
        tools.setFfmpeg("error file:other.mov: Input/output error\\n\nsay-pid\nwait-for " + done
            + "\nwrite-output shorter\n" + ending);
        ToolProcess creator(tools.creator(), transcode(video(), output()));
        creator.waitForError("pid ");
        setGoodFfmpeg();
        writeFile(done, "");
        EXPECT_EQ(creator.wait(), 0) << creator.errorText();
        EXPECT_EQ(contentsOf(output()), movie());
        EXPECT_NE(
            creator.errorText().find("tarnwell: ffmpeg runs again after a read error\n"), std::string::npos);
    }
}

TEST_F(InputFailureTest, aReadErrorThatOnlyFfmpegReportsCausesOneMoreRun)
{
    EXPECT_EQ(statusAfterMessage("file:other.mov: Input/output error", "none 1"), 0) << m_errors;
    EXPECT_EQ(contentsOf(output()), movie());
    const auto notice = m_errors.find("runs again");
    EXPECT_NE(notice, std::string::npos);
    EXPECT_EQ(notice, m_errors.rfind("runs again"));
}

TEST_F(InputFailureTest, aFileThatIsOnlyBrokenInItselfIsSaved)
{
    EXPECT_EQ(statusAfterMessage("file:other.mov: Invalid data found", "none 1"), 0);
    EXPECT_EQ(m_errors.find("runs again"), std::string::npos);
    EXPECT_EQ(contentsOf(output()), movie());
}

} // namespace tarnwell::test
