// SPDX-License-Identifier: MIT
// The grey picture, read with another decoder.
#include "tools/Placeholder.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <gtest/gtest.h>

#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr int noLimit = 0;

QImage decoded(const std::string& picture)
{
    QImageReader::setAllocationLimit(noLimit);
    return QImage::fromData(QByteArray(picture.data(), static_cast<qsizetype>(picture.size())), "JPG");
}

bool isOneGrey(const QImage& picture)
{
    for (const int x : {0, picture.width() / 2, picture.width() - 1}) {
        for (const int y : {0, picture.height() / 2, picture.height() - 1}) {
            const QRgb pixel = picture.pixel(x, y);
            if (pixel != picture.pixel(0, 0) || qRed(pixel) != qGreen(pixel) || qGreen(pixel) != qBlue(pixel))
                return false;
        }
    }
    return true;
}

} // namespace

TEST(PlaceholderTest, decodesToOneGreyInTheSizeAskedFor)
{
    for (const QSize size : {QSize(1, 1), QSize(7, 3), QSize(8, 8), QSize(9, 16), QSize(320, 240),
             QSize(1080, 1920), QSize(7680, 4320), QSize(65500, 1), QSize(1, 65500)}) {
        SCOPED_TRACE(testing::Message() << size.width() << "x" << size.height());
        const QImage picture = decoded(placeholderPicture(size.width(), size.height()));
        ASSERT_EQ(picture.size(), size);
        EXPECT_TRUE(isOneGrey(picture));
        EXPECT_GT(qGray(picture.pixel(0, 0)), 64);
        EXPECT_LT(qGray(picture.pixel(0, 0)), 192);
    }
}

TEST(PlaceholderTest, sizesThatAPictureCannotHaveAreCut)
{
    EXPECT_EQ(decoded(placeholderPicture(0, 0)).size(), QSize(1, 1));
    EXPECT_EQ(decoded(placeholderPicture(-5, 10)).size(), QSize(1, 10));
    EXPECT_EQ(decoded(placeholderPicture(1000000, 2)).size(), QSize(65500, 2));
    EXPECT_EQ(decoded(placeholderPicture(2, 2147483647)).size(), QSize(2, 65500));
}

TEST(PlaceholderTest, hasTheSizeInWhichTheVideoIsShown)
{
    struct Row {
        const char* name;
        int width;
        int height;
        double pixelAspect;
        bool isTurned;
        QSize expected;
    };
    const std::vector<Row> rows = {
        {"square pixels", 720, 576, 1, false, {720, 576}},
        {"wide pixels", 720, 576, 64.0 / 45, false, {1024, 576}},
        {"wide pixels, turned", 720, 576, 64.0 / 45, true, {576, 1024}},
        {"tall pixels", 720, 576, 0.5, false, {720, 1152}},
        {"wide pixels of a large picture", 7680, 4320, 2, false, {7680, 2160}},
        {"tall pixels of a large picture", 7680, 4320, 0.5, false, {3840, 4320}},
        {"an absurd ratio", 100, 100, 10000, false, {100, 1}},
        {"an unknown size", 0, 0, 2, false, {1, 1}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        VideoFacts video;
        video.width = row.width;
        video.height = row.height;
        video.pixelAspect = row.pixelAspect;
        if (row.isTurned)
            video.decoded = DisplayMatrix{0, 1, -1, 0};
        EXPECT_EQ(decoded(placeholderOf(video)).size(), row.expected);
    }
}

TEST(PlaceholderTest, hasNoMorePixelsThanAnyFrame)
{
    struct Row {
        QSize asked;
        QSize expected;
    };
    for (const Row& row : {Row{{16384, 16384}, {16384, 16384}}, Row{{65500, 65500}, {16384, 16384}},
             Row{{65500, 16375}, {32768, 8192}}}) {
        const std::string picture = placeholderPicture(row.asked.width(), row.asked.height());
        QByteArray bytes(picture.data(), static_cast<qsizetype>(picture.size()));
        QBuffer buffer(&bytes);
        EXPECT_EQ(QImageReader(&buffer, "jpeg").size(), row.expected);
    }
}

TEST(PlaceholderTest, isSmall)
{
    EXPECT_LT(placeholderPicture(7680, 4320).size(), 200U * 1024U);
}

} // namespace tarnwell::test
