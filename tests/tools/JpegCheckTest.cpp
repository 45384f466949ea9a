// SPDX-License-Identifier: MIT
// Compares the check of stills with the application's decoder.
#include "tools/JpegCheck.h"

#include "tests/tools/MemoryFile.h"
#include "tools/Placeholder.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace tarnwell::test
{

namespace
{

/// A picture with some detail, encoded in that format.
std::string encoded(const char* format, QImage::Format pixels = QImage::Format_RGB32)
{
    QImage picture(67, 45, pixels);
    picture.fill(Qt::gray);
    QPainter painter(&picture);
    painter.fillRect(5, 5, 30, 20, Qt::red);
    painter.drawLine(0, 0, 66, 44);
    painter.end();
    QBuffer buffer;
    EXPECT_TRUE(picture.save(&buffer, format, 80));
    return buffer.data().toStdString();
}

std::string black(int width, int height)
{
    QImage picture(width, height, QImage::Format_Grayscale8);
    picture.fill(Qt::black);
    QBuffer buffer;
    EXPECT_TRUE(picture.save(&buffer, "JPEG"));
    return buffer.data().toStdString();
}

bool isDecoded(const std::string& bytes)
{
    QImageReader::setAllocationLimit(1024); // MiB; the limit of the application
    QByteArray data(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer, "jpeg");
    return !reader.read().isNull();
}

/// Overwrites, removes or repeats a few bytes, in most cases before the scan data.
std::string damaged(std::string bytes, std::mt19937& random)
{
    const auto upTo
        = [&random](std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(random); };
    for (std::size_t changes = upTo(2); changes < 3; ++changes) {
        const std::size_t place
            = upTo(upTo(3) == 0 ? bytes.size() - 2 : std::min<std::size_t>(bytes.size() - 2, 640));
        switch (upTo(5)) {
        case 0:
            bytes.erase(place, 1 + upTo(3));
            break;
        case 1:
            bytes.insert(place, bytes.substr(upTo(place), 1 + upTo(80)));
            break;
        default:
            bytes[place] = static_cast<char>(upTo(2) == 0 ? upTo(255) : upTo(4));
        }
    }
    return bytes;
}

} // namespace

TEST(JpegCheckTest, picturesInColourAndGreyAreAccepted)
{
    EXPECT_TRUE(isPlainJpeg(encoded("JPEG")));
    EXPECT_TRUE(isPlainJpeg(encoded("JPEG", QImage::Format_Grayscale8)));
    EXPECT_TRUE(isPlainJpeg(placeholderPicture(1, 1)));
    EXPECT_TRUE(isPlainJpeg(placeholderPicture(1920, 1080)));
}

TEST(JpegCheckTest, otherFormatsAreRefused)
{
    for (const char* format : {"PNG", "BMP", "PPM"})
        EXPECT_FALSE(isPlainJpeg(encoded(format))) << format;
    EXPECT_FALSE(isPlainJpeg("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"1\" height=\"1\"/>"));
    EXPECT_FALSE(isPlainJpeg(std::string_view()));
}

TEST(JpegCheckTest, whatIsCutOffAnywhereIsRefused)
{
    const std::string whole = encoded("JPEG");
    for (std::size_t size = 0; size < whole.size(); ++size)
        ASSERT_FALSE(isPlainJpeg(whole.substr(0, size))) << size;
}

TEST(JpegCheckTest, bytesBehindTheEndAreRefused)
{
    EXPECT_FALSE(isPlainJpeg(encoded("JPEG") + "<svg/>"));
    EXPECT_FALSE(isPlainJpeg(encoded("JPEG") + encoded("JPEG")));
}

TEST(JpegCheckTest, aPictureInSeveralScansIsRefused)
{
    QBuffer buffer;
    QImageWriter writer(&buffer, "JPEG");
    writer.setProgressiveScanWrite(true);
    QImage picture(67, 45, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(writer.write(picture));
    const std::string bytes = buffer.data().toStdString();
    EXPECT_TRUE(isDecoded(bytes));
    EXPECT_FALSE(isPlainJpeg(bytes));
}

TEST(JpegCheckTest, aPictureWithMorePixelsThanAnyFrameIsRefused)
{
    EXPECT_TRUE(isPlainJpeg(black(16384, 16384)));
    EXPECT_FALSE(isPlainJpeg(black(16384, 16385)));
}

TEST(JpegCheckTest, aLongSideOfASmallPictureIsAccepted)
{
    EXPECT_TRUE(isPlainJpeg(black(65500, 1)));
    EXPECT_TRUE(isPlainJpeg(black(1, 65500)));
}

TEST(JpegCheckTest, everyPictureThatIsAcceptedCanBeDecoded)
{
    constexpr int rounds = 4000;
    int acceptedCount = 0;
    std::mt19937 random(19);
    const std::string whole[]
        = {encoded("JPEG"), encoded("JPEG", QImage::Format_Grayscale8), placeholderPicture(64, 48)};
    for (int round = 0; round < rounds; ++round) {
        const std::string bytes = damaged(whole[round % 3], random);
        if (!isPlainJpeg(bytes))
            continue;
        ++acceptedCount;
        ASSERT_TRUE(isDecoded(bytes)) << "round " << round;
    }
    EXPECT_GT(acceptedCount, rounds / 20);
}

TEST(JpegCheckTest, aFileIsReadFromItsStart)
{
    const std::string picture = encoded("JPEG");
    const MemoryFile file(picture);
    EXPECT_TRUE(isPlainJpeg(file.descriptor()));
    const MemoryFile other(picture + "x");
    EXPECT_FALSE(isPlainJpeg(other.descriptor()));
    EXPECT_FALSE(isPlainJpeg(-1));
}

} // namespace tarnwell::test
