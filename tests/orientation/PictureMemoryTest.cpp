// SPDX-License-Identifier: MIT
#include "orientation/PictureMemory.h"

#include <gtest/gtest.h>

#include <set>

namespace tarnwell::test
{

namespace
{

constexpr QSize size{640, 360};

QImage picture(QSize ofSize = size)
{
    return pictureInKeptMemory(ofSize, QImage::Format_RGB32);
}

} // namespace

TEST(PictureMemoryTest, aPictureHasItsSizeAndFormat)
{
    for (const auto format :
        {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_Grayscale8}) {
        const QImage made = pictureInKeptMemory({7, 5}, format);
        EXPECT_EQ(made.size(), QSize(7, 5));
        EXPECT_EQ(made.format(), format);
        EXPECT_EQ(made.bytesPerLine(), QImage(7, 5, format).bytesPerLine());
    }
}

TEST(PictureMemoryTest, noSizeGivesNoPicture)
{
    EXPECT_TRUE(picture({0, 5}).isNull());
    EXPECT_TRUE(picture({5, 0}).isNull());
    EXPECT_TRUE(picture({-1, 5}).isNull());
}

TEST(PictureMemoryTest, theMemoryOfAPictureThatHasGoneIsUsedAgain)
{
    const uchar* memory = picture().constBits();
    EXPECT_EQ(picture().constBits(), memory);
    EXPECT_EQ(picture(size.transposed()).constBits(), memory); // as much of it
}

TEST(PictureMemoryTest, theMemoryOfAPictureThatLivesIsNot)
{
    QImage first = picture();
    first.fill(Qt::red);
    const QImage copy = first;
    const uchar* memory = first.constBits();
    first = QImage();
    QImage second = picture();
    second.fill(Qt::blue);
    EXPECT_NE(second.constBits(), memory);
    EXPECT_EQ(copy.pixelColor(5, 5), QColor(Qt::red));
}

TEST(PictureMemoryTest, aChangedCopyHasMemoryOfItsOwn)
{
    QImage first = picture();
    first.fill(Qt::red);
    QImage copy = first;
    copy.fill(Qt::blue);
    EXPECT_EQ(first.pixelColor(0, 0), QColor(Qt::red));
}

TEST(PictureMemoryTest, refreshAfterRefreshTakesTheSameTwoPieces)
{
    std::set<const uchar*> pieces;
    QImage shown;
    for (int refresh = 0; refresh < 10; ++refresh) {
        QImage turned = picture();
        pieces.insert(turned.constBits());
        shown = turned;
        turned = QImage();
        const QImage mirrored = picture(size.transposed());
        pieces.insert(mirrored.constBits());
        shown = mirrored;
    }
    EXPECT_EQ(pieces.size(), 2U);
}

TEST(PictureMemoryTest, anotherSizeGetsMemoryOfItsOwnSize)
{
    picture();
    QImage larger = picture({1280, 720});
    larger.fill(Qt::red);
    EXPECT_EQ(larger.pixelColor(1279, 719), QColor(Qt::red));
}

} // namespace tarnwell::test
