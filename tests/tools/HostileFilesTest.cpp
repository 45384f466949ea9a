// SPDX-License-Identifier: MIT
// Files that call themselves videos and lead elsewhere, with the installed ffprobe and ffmpeg: first by
// themselves, then under the tools.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/Listener.h"
#include "tests/tools/ToolProcess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Words = std::vector<std::string>;

const std::string tools = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/";
const std::string ffmpeg = "/usr/bin/ffmpeg";
const std::string ffprobe = "/usr/bin/ffprobe";

Words joined(Words first, const Words& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace

class HostileFilesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(runTool(ffmpeg,
                      {"-v", "error", "-f", "lavfi", "-i", "testsrc2=s=64x48:d=1", "-pix_fmt", "yuv420p",
                          at("secret.mp4")}),
            0);
        m_secret = contentsOf(at("secret.mp4"));
        writeFile(at("script.mp4"), "ffconcat version 1.0\nfile secret.mp4\n");
        writeFile(at("playlist.mp4"), playlist("secret.mp4"));
    }

    void TearDown() override { EXPECT_EQ(contentsOf(at("secret.mp4")), m_secret); }

    static std::string playlist(const std::string& part)
    {
        return "#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:1,\n" + part + "\n#EXT-X-ENDLIST\n";
    }

    std::string at(const std::string& name) const { return m_folder.path() + name; }
    Words names() const { return namesIn(m_folder.path()); }

    /// Whether the report tells of the other file's picture.
    static bool tellsOfSecret(const std::string& program, const Words& options, const std::string& file)
    {
        ToolProcess process(program,
            joined({"-v", "quiet", "-print_format", "json", "-show_streams"}, joined(options, {file})));
        process.wait();
        return process.output().find("\"width\": 64") != std::string::npos;
    }

private:
    TemporaryDirectory m_folder;
    std::string m_secret;
};

TEST_F(HostileFilesTest, aReportTellsNothingOfAnotherFile)
{
    EXPECT_TRUE(tellsOfSecret(ffprobe, {}, at("script.mp4")));
    EXPECT_FALSE(tellsOfSecret(tools + "sniffer", {}, at("script.mp4")));
    // Newer versions ask to be told that it is a playlist.
    EXPECT_TRUE(tellsOfSecret(ffprobe, {"-f", "hls"}, at("playlist.mp4")));
    EXPECT_FALSE(tellsOfSecret(tools + "sniffer", {"-f", "hls"}, at("playlist.mp4")));
    EXPECT_TRUE(tellsOfSecret(tools + "sniffer", {}, at("secret.mp4")));
}

TEST_F(HostileFilesTest, aStillShowsNothingOfAnotherFile)
{
    // The frame that creator falls back on; ffmpeg cannot seek in such a script.
    const Words first = {"-i", at("script.mp4"), "-frames:v", "1", "-y", at("still.jpg")};
    EXPECT_EQ(runTool(ffmpeg, joined({"-v", "quiet"}, first)), 0);
    const std::string shown = contentsOf(at("still.jpg"));
    EXPECT_EQ(runTool(tools + "creator", joined({"-v", "quiet", "-ss", "0.5"}, first)), 0);
    const std::string placeholder = contentsOf(at("still.jpg"));
    EXPECT_GT(shown.size(), placeholder.size());
    EXPECT_NE(placeholder, "");
}

TEST_F(HostileFilesTest, aVideoHoldsNothingOfAnotherFile)
{
    const Words transcode
        = {"-i", at("script.mp4"), "-pix_fmt", "yuv420p", "-metadata:s:v", "rotate=0", "-y", at("out.mp4")};
    const Words fixFlag = {"-i", at("script.mp4"), "-c:v", "copy", "-c:a", "copy", "-metadata:s:v",
        "rotate=90", "-y", at("out.mp4")};
    for (const Words& list : {transcode, fixFlag}) {
        EXPECT_EQ(runTool(ffmpeg, joined({"-v", "error"}, list)), 0);
        EXPECT_TRUE(tellsOfSecret(ffprobe, {}, at("out.mp4")));
        std::filesystem::remove(at("out.mp4"));
        EXPECT_NE(runTool(tools + "creator", list), 0);
        EXPECT_EQ(names(), Words({"playlist.mp4", "script.mp4", "secret.mp4"}));
    }
}

TEST_F(HostileFilesTest, aNetworkAddressIsNotCalled)
{
    const Listener listener;
    writeFile(at("address.mp4"), playlist("http://127.0.0.1:" + listener.port() + "/part.ts"));
    const Words list = {"-v", "quiet", "-f", "hls", "-protocol_whitelist", "file,http,tcp", "-rw_timeout",
        "100000", at("address.mp4")};
    ToolProcess bare(ffprobe, list);
    EXPECT_TRUE(listener.isCalled());
    bare.wait();
    runTool(tools + "sniffer", list);
    EXPECT_FALSE(listener.wasCalled());
}

} // namespace tarnwell::test
