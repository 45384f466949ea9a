// SPDX-License-Identifier: MIT
// Files with a video's name that refer to other files or addresses: first with ffprobe and ffmpeg alone, then
// under the tools.
#include "tests/support/Files.h"
#include "tests/tools/Listener.h"
#include "tests/tools/RealTools.h"
#include "tools/Placeholder.h"

#include <QImage>

#include <filesystem>
#include <string>

namespace tarnwell::test
{

class HostileFilesTest : public RealTools
{
protected:
    void SetUp() override
    {
        makeVideo(at("secret.mp4"), "testsrc2=s=64x48:d=1", {"-pix_fmt", "yuv420p"});
        m_secret = contentsOf(at("secret.mp4"));
        writeFile(at("script.mp4"), "ffconcat version 1.0\nfile secret.mp4\n");
        writeFile(at("playlist.mp4"), playlist("secret.mp4"));
    }

    void TearDown() override { EXPECT_EQ(contentsOf(at("secret.mp4")), m_secret); }

    static std::string playlist(const std::string& part)
    {
        return "#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:1,\n" + part + "\n#EXT-X-ENDLIST\n";
    }

    /// Whether the report contains data of the other file's picture.
    static bool describesSecret(const std::string& program, const Words& options, const std::string& file)
    {
        ToolProcess process(program,
            joined({"-v", "quiet", "-print_format", "json", "-show_streams"}, joined(options, {file})));
        process.wait();
        return process.output().find("\"width\": 64") != std::string::npos;
    }

private:
    std::string m_secret;
};

TEST_F(HostileFilesTest, aReportDescribesNoOtherFile)
{
    EXPECT_TRUE(describesSecret(realFfprobe, {}, at("script.mp4")));
    EXPECT_FALSE(describesSecret(builtSniffer, {}, at("script.mp4")));
    // Newer versions accept a playlist with this name only if the format is given.
    EXPECT_TRUE(describesSecret(realFfprobe, {"-f", "hls"}, at("playlist.mp4")));
    EXPECT_FALSE(describesSecret(builtSniffer, {"-f", "hls"}, at("playlist.mp4")));
    EXPECT_TRUE(describesSecret(builtSniffer, {}, at("secret.mp4")));
}

TEST_F(HostileFilesTest, aStillShowsNothingOfAnotherFile)
{
    // The arguments of creator's second attempt; ffmpeg cannot seek in such a script.
    const Words first = {"-i", at("script.mp4"), "-frames:v", "1", "-y", at("still.jpg")};
    EXPECT_EQ(runTool(realFfmpeg, joined({"-v", "quiet"}, first)), 0);
    const std::string shown = contentsOf(at("still.jpg"));
    EXPECT_EQ(creator(joined({"-v", "quiet", "-ss", "0.5"}, first)), 0);
    const std::string still = contentsOf(at("still.jpg"));
    const QSize size = QImage::fromData(QByteArray::fromStdString(still)).size();
    EXPECT_EQ(still, placeholderPicture(size.width(), size.height()));
    EXPECT_NE(still, shown);
}

TEST_F(HostileFilesTest, aVideoHoldsNothingOfAnotherFile)
{
    for (const Words& list : {transcodeCommand(at("script.mp4"), at("out.mp4"), ""),
             fixFlagCommand(at("script.mp4"), at("out.mp4"))}) {
        EXPECT_EQ(runTool(realFfmpeg, joined({"-v", "error"}, list)), 0);
        EXPECT_TRUE(describesSecret(realFfprobe, {}, at("out.mp4")));
        std::filesystem::remove(at("out.mp4"));
        EXPECT_NE(creator(list), 0);
        EXPECT_EQ(namesIn(folder()), Words({"playlist.mp4", "script.mp4", "secret.mp4"}));
    }
}

TEST_F(HostileFilesTest, aNetworkAddressIsNotCalled)
{
    const Listener listener;
    writeFile(at("address.mp4"), playlist("http://127.0.0.1:" + listener.port() + "/part.ts"));
    const Words list = {"-v", "quiet", "-f", "hls", "-protocol_whitelist", "file,http,tcp", "-rw_timeout",
        "100000", at("address.mp4")};
    ToolProcess bare(realFfprobe, list);
    EXPECT_TRUE(listener.isCalled());
    bare.wait();
    runTool(builtSniffer, list);
    EXPECT_FALSE(listener.wasCalled());
}

} // namespace tarnwell::test
