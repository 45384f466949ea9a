// SPDX-License-Identifier: MIT
// The formats that the window accepts for a still frame and for the picture "poster".
#include "app/PictureFile.h"
#include "desktop/PathText.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/SilentStop.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell::test
{

class StillFormatDeathTest : public FakeToolsTest
{
protected:
    std::string path() const { return folder() + "picture"; }

    void savePicture(const char* format) { ASSERT_TRUE(still().save(textOfPath(path()), format)); }

    void openWithStill(const std::string& creatorScript)
    {
        tools().setCreator(creatorScript);
        start();
        writeFile(folder() + "clip.mp4", "bytes");
        drop(folder() + "clip.mp4");
    }
};

TEST_F(StillFormatDeathTest, aStillInAnotherFormatStopsTheProgram)
{
    savePicture("PNG");
    EXPECT_SILENT_STOP(openWithStill("copy " + path() + "\n"));
}

TEST_F(StillFormatDeathTest, aStillThatNamesAnotherFileStopsTheProgram)
{
    writeFile(path(),
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"48\" "
        "height=\"32\"><image xlink:href=\"still.jpg\" width=\"48\" height=\"32\"/></svg>\n");
    EXPECT_SILENT_STOP(openWithStill("copy " + path() + "\n"));
}

TEST_F(StillFormatDeathTest, onlyJpegIsAStillAndOnlyPngIsAPoster)
{
    savePicture("JPEG");
    EXPECT_EQ(loadStill(path()).size(), stillSize);
    EXPECT_TRUE(loadPoster(path()).isNull());
    savePicture("PNG");
    EXPECT_TRUE(loadStill(path()).isNull());
    EXPECT_EQ(loadPoster(path()).size(), stillSize);
    savePicture("BMP");
    EXPECT_TRUE(loadStill(path()).isNull());
    EXPECT_TRUE(loadPoster(path()).isNull());
}

TEST_F(StillFormatDeathTest, aStillBehindALinkIsNotRead)
{
    const std::string link = folder() + "link";
    savePicture("JPEG");
    std::filesystem::create_symlink(path(), link);
    EXPECT_TRUE(loadStill(link).isNull());
    savePicture("PNG");
    EXPECT_FALSE(loadPoster(link).isNull());
}

TEST_F(StillFormatDeathTest, aNamedPipeIsNeitherReadNorWaitedFor)
{
    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    EXPECT_TRUE(loadStill(path()).isNull());
    EXPECT_TRUE(loadStill(folder()).isNull());
    EXPECT_TRUE(loadStill(folder() + "missing").isNull());
}

TEST_F(StillFormatDeathTest, aStillThatIsLargerThanAnyFrameIsNotRead)
{
    savePicture("JPEG");
    std::string bytes = contentsOf(path());
    const auto frame = bytes.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    writeFile(path(), bytes.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC")); // 65500 x 65500 pixels
    EXPECT_TRUE(loadStill(path()).isNull());
    savePicture("JPEG");
    EXPECT_EQ(::truncate(path().c_str(), off_t(600) << 20), 0); // bytes behind the end
    EXPECT_TRUE(loadStill(path()).isNull());
}

} // namespace tarnwell::test
