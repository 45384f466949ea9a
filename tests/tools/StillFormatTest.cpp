// SPDX-License-Identifier: MIT
// A compromised ffmpeg that writes something other than a JPEG picture as the still.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"
#include "tools/Placeholder.h"

#include <string>
#include <vector>

namespace tarnwell::test
{

class StillFormatTest : public CreatorTest
{
protected:
    std::string picture() const { return tools.at("still.jpg"); }

    std::string writing(const std::string& bytes)
    {
        return "write-output-file " + tools.addData("frame", bytes) + "\n";
    }

    std::string pictureAfter(const std::string& ffmpegScript)
    {
        tools.setFfmpeg(ffmpegScript);
        EXPECT_EQ(run(still("1.5", picture())), 0);
        return contentsOf(picture());
    }

    const std::string frame = placeholderPicture(33, 22); // represents a decoded frame
    const std::string placeholder = placeholderPicture(64, 48); // has the size in ffprobe's report
};

TEST_F(StillFormatTest, everythingElseThanAWholeJpegPictureBecomesThePlaceholder)
{
    const std::vector<std::string> stills = {
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"9\" "
        "height=\"9\"><image xlink:href=\"file:///etc/passwd\" width=\"9\" height=\"9\"/></svg>\n",
        "\x89PNG\r\n\x1A\n", "GIF89a", "P6\n1 1\n255\nabc", "\xFF\xD8", frame.substr(0, frame.size() - 2),
        frame + "<svg/>"};
    for (const auto& bytes : stills) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(pictureAfter(writing(bytes)), placeholder);
    }
}

TEST_F(StillFormatTest, aPictureThatClaimsToBeLargerThanAnyFrameBecomesThePlaceholder)
{
    std::string huge = frame;
    const auto size = huge.find("\xFF\xC0") + 5;
    huge.replace(size, 4, "\xFF\xDC\xFF\xDC"); // 65500 x 65500
    EXPECT_EQ(pictureAfter(writing(huge)), placeholder);
}

TEST_F(StillFormatTest, theFirstFrameIsTakenWhereTheFrameAtThePositionIsNoJpegPicture)
{
    EXPECT_EQ(pictureAfter("with -ss write-output GIF89a\nwith -ss exit 0\n" + writing(frame)), frame);
}

} // namespace tarnwell::test
