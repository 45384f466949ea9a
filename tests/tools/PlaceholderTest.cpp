// SPDX-License-Identifier: MIT
// The picture for a video that cannot be decoded, read with another decoder.
#include "tools/Placeholder.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <gtest/gtest.h>

#include <algorithm>
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

bool isGrey(const QImage& picture)
{
    for (int y = 0; y < picture.height(); y += 1 + picture.height() / 100) {
        for (int x = 0; x < picture.width(); x += 1 + picture.width() / 100) {
            const QRgb pixel = picture.pixel(x, y);
            if (qRed(pixel) != qGreen(pixel) || qGreen(pixel) != qBlue(pixel))
                return false;
        }
    }
    return true;
}

constexpr int lightness = 150; // of the drawing at least; the ground is darker

bool isDrawn(const QImage& picture, double x, double y)
{
    return qGray(picture.pixel(static_cast<int>(x), static_cast<int>(y))) >= lightness;
}

/// The share of the picture's pixels that belong to the drawing.
double drawnShare(const QImage& picture)
{
    qint64 count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += isDrawn(picture, x, y) ? 1 : 0;
    }
    return static_cast<double>(count) / static_cast<double>(picture.width() * qint64(picture.height()));
}

} // namespace

TEST(PlaceholderTest, isAGreyPictureInTheSizeAskedFor)
{
    for (const QSize size : {QSize(1, 1), QSize(7, 3), QSize(8, 8), QSize(9, 16), QSize(320, 240),
             QSize(1080, 1920), QSize(7680, 4320), QSize(65500, 1), QSize(1, 65500)}) {
        SCOPED_TRACE(testing::Message() << size.width() << "x" << size.height());
        const QImage picture = decoded(placeholderPicture(size.width(), size.height()));
        ASSERT_EQ(picture.size(), size);
        EXPECT_TRUE(isGrey(picture));
        EXPECT_GT(qGray(picture.pixel(0, 0)), 64);
        EXPECT_LT(qGray(picture.pixel(0, 0)), 192);
    }
}

TEST(PlaceholderTest, bearsALargeStruckOutFilm)
{
    for (const QSize size : {QSize(64, 48), QSize(320, 240), QSize(1920, 1080), QSize(1080, 1920),
             QSize(1920, 120), QSize(7680, 4320)}) {
        SCOPED_TRACE(testing::Message() << size.width() << "x" << size.height());
        const QImage picture = decoded(placeholderPicture(size.width(), size.height()));
        const double filmHeight = 0.6 * std::min(size.height() * 1.0, size.width() / 1.36);
        const auto isDrawnAt = [&](double x, double y) { // from the centre, in heights of the film
            return isDrawn(
                picture, size.width() / 2.0 + x * filmHeight, size.height() / 2.0 + y * filmHeight);
        };
        EXPECT_TRUE(isDrawnAt(0, 0)) << "the strike";
        EXPECT_TRUE(isDrawnAt(0.33, -0.31)) << "the strike";
        EXPECT_FALSE(isDrawnAt(0.33, 0.31)) << "the strike is no cross";
        EXPECT_TRUE(isDrawnAt(0, -0.5) && isDrawnAt(0, 0.5)) << "the edges above and below";
        EXPECT_TRUE(isDrawnAt(-0.68, 0) && isDrawnAt(0.68, 0)) << "the edges at the sides";
        EXPECT_TRUE(isDrawnAt(-0.56, -0.17) && isDrawnAt(0.56, 0.17)) << "the perforation";
        EXPECT_FALSE(isDrawnAt(-0.56, 0) || isDrawnAt(0.56, 0)) << "the holes";
    }
}

TEST(PlaceholderTest, itsDrawingIsNoLargerThanThePicture)
{
    for (const QSize size : {QSize(640, 480), QSize(480, 640)}) {
        const QImage picture = decoded(placeholderPicture(size.width(), size.height()));
        for (int x = 0; x < size.width(); ++x)
            EXPECT_FALSE(isDrawn(picture, x, 0) || isDrawn(picture, x, size.height() - 1)) << x;
        for (int y = 0; y < size.height(); ++y)
            EXPECT_FALSE(isDrawn(picture, 0, y) || isDrawn(picture, size.width() - 1, y)) << y;
        EXPECT_GT(drawnShare(picture), 0.03);
        EXPECT_LT(drawnShare(picture), 0.3);
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
    for (const Row& row : {Row{{16384, 16384}, {16384, 16384}}, Row{{65500, 16375}, {32768, 8192}}}) {
        const std::string picture = placeholderPicture(row.asked.width(), row.asked.height());
        QByteArray bytes(picture.data(), static_cast<qsizetype>(picture.size()));
        QBuffer buffer(&bytes);
        EXPECT_EQ(QImageReader(&buffer, "jpeg").size(), row.expected);
    }
}

TEST(PlaceholderTest, isSmall)
{
    EXPECT_LT(placeholderPicture(7680, 4320).size(), 600U * 1024U);
}

} // namespace tarnwell::test
