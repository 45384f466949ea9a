// SPDX-License-Identifier: MIT
#include "orientation/Picture.h"

#include "orientation/OrientationState.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tarnwell::test
{

namespace
{

/// A picture in which adjacent pixels differ. Colours with alpha are premultiplied.
QImage pattern(QSize size, QImage::Format format)
{
    QImage image(size, format);
    const bool hasAlpha = image.hasAlphaChannel();
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int level = (x * 37 + y * 91) % 251;
            const int alpha = hasAlpha ? (x * 17 + y * 29) % 256 : 255;
            if (format == QImage::Format_Grayscale8)
                image.scanLine(y)[x] = static_cast<uchar>(level);
            else
                reinterpret_cast<QRgb*>(image.scanLine(y))[x]
                    = qPremultiply(qRgba(level, (x * 5 + 60) % 256, (y * 11 + 90) % 256, alpha));
        }
    }
    return image;
}

/// The source position of the pixel at `result`.
QPoint origin(QPoint result, QSize source, const OrientationState& state)
{
    const bool isSideways = state.positionState % 2 == 0;
    const QSize turned = isSideways ? source.transposed() : source;
    const int x = state.hFlipState ? turned.width() - 1 - result.x() : result.x();
    const int y = state.vFlipState ? turned.height() - 1 - result.y() : result.y();
    switch (state.positionState) {
    case 1:
        return {x, y};
    case 2:
        return {source.width() - 1 - y, x};
    case 3:
        return {source.width() - 1 - x, source.height() - 1 - y};
    default:
        return {y, source.height() - 1 - x};
    }
}

QImage preview(const QImage& source, const OrientationState& state)
{
    const auto angle = static_cast<double>(angleOfPosition(state.positionState));
    return flipImage(rotateImage(source, angle), state.hFlipState, state.vFlipState);
}

/// The stored value. QImage::pixel would unpremultiply it and lose bits of nearly transparent pixels.
QRgb storedPixel(const QImage& image, int x, int y)
{
    if (image.format() == QImage::Format_Grayscale8)
        return image.pixel(x, y);
    return reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
}

void expectMoved(const QImage& source, const QImage& result, const OrientationState& state)
{
    const bool isSideways = state.positionState % 2 == 0;
    ASSERT_EQ(result.size(), isSideways ? source.size().transposed() : source.size());
    ASSERT_EQ(result.hasAlphaChannel(), source.hasAlphaChannel());
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const QPoint from = origin({x, y}, source.size(), state);
            const QRgb expected = storedPixel(source, from.x(), from.y());
            ASSERT_EQ(storedPixel(result, x, y), expected) << x << ", " << y;
        }
    }
}

struct PictureKind {
    const char* name;
    QImage::Format format;
};

struct PictureSize {
    const char* name;
    QSize size;
};

constexpr PictureKind kinds[] = {{"opaque", QImage::Format_RGB32},
    {"transparent", QImage::Format_ARGB32_Premultiplied}, {"grey", QImage::Format_Grayscale8}};

const PictureSize sizes[]
    = {{"EvenByEven", {64, 48}}, {"OddByOdd", {63, 47}}, {"OddByEven", {33, 50}}, {"EvenByOdd", {50, 33}},
        {"Square", {31, 31}}, {"OnePixel", {1, 1}}, {"OneLine", {17, 1}}, {"OneColumn", {1, 17}}};

} // namespace

class PictureTest : public testing::TestWithParam<std::tuple<PictureKind, PictureSize>>
{
};

TEST_P(PictureTest, everyPixelOfEveryOrientationIsInItsPlace)
{
    const QImage source = pattern(std::get<1>(GetParam()).size, std::get<0>(GetParam()).format);
    for (int number = 0; number < 16; ++number) {
        const OrientationState state = {number / 4 + 1, number % 4 >= 2, number % 2 == 1};
        SCOPED_TRACE(testing::Message() << "position " << state.positionState << " vertical "
                                        << state.vFlipState << " horizontal " << state.hFlipState);
        expectMoved(source, preview(source, state), state);
    }
}

INSTANTIATE_TEST_SUITE_P(Pictures, PictureTest,
    testing::Combine(testing::ValuesIn(kinds), testing::ValuesIn(sizes)),
    [](const auto& row) { return std::string(std::get<0>(row.param).name) + std::get<1>(row.param).name; });

TEST(PictureShapeTest, aQuarterTurnOfAFullFrameSwapsItsSides)
{
    const QImage frame = pattern({1920, 1080}, QImage::Format_RGB32);
    EXPECT_EQ(rotateImage(frame, 90).size(), QSize(1080, 1920));
    EXPECT_EQ(rotateImage(frame, 270).size(), QSize(1080, 1920));
    EXPECT_EQ(rotateImage(frame, 180).size(), QSize(1920, 1080));
    EXPECT_EQ(rotateImage(frame, 0).size(), QSize(1920, 1080));
}

TEST(PictureShapeTest, aQuarterTurnToTheLeftPutsTheTopEdgeAtTheLeft)
{
    QImage frame(1920, 1080, QImage::Format_RGB32);
    frame.fill(Qt::black);
    for (int x = 0; x < frame.width(); ++x)
        frame.setPixelColor(x, 0, Qt::red);
    const QImage left = rotateImage(frame, 90);
    const QImage right = rotateImage(frame, 270);
    for (const int y : {0, 1000, 1919}) {
        EXPECT_EQ(left.pixelColor(0, y), QColor(Qt::red));
        EXPECT_EQ(left.pixelColor(1079, y), QColor(Qt::black));
        EXPECT_EQ(right.pixelColor(1079, y), QColor(Qt::red));
        EXPECT_EQ(right.pixelColor(0, y), QColor(Qt::black));
    }
}

TEST(PictureShapeTest, aQuarterTurnToTheLeftPutsTheRightEdgeAtTheTop)
{
    QImage frame(3, 2, QImage::Format_RGB32);
    frame.fill(Qt::black);
    frame.setPixelColor(2, 0, Qt::red);
    frame.setPixelColor(2, 1, Qt::green);
    const QImage left = rotateImage(frame, 90);
    EXPECT_EQ(left.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(left.pixelColor(1, 0), QColor(Qt::green));
}

TEST(PictureShapeTest, bothMirrorsShowTheSameAsAHalfTurn)
{
    const QImage frame = pattern({63, 47}, QImage::Format_RGB32);
    EXPECT_EQ(preview(frame, {1, true, true}), preview(frame, {3, false, false}));
    EXPECT_EQ(preview(frame, {3, true, true}), preview(frame, {1, false, false}));
}

TEST(PictureShapeTest, theUntouchedPreviewShowsTheFrameUnchanged)
{
    const QImage frame = pattern({63, 47}, QImage::Format_RGB32);
    EXPECT_EQ(preview(frame, {1, false, false}), frame);
}

TEST(PictureShapeTest, theSourceStaysAsItIs)
{
    const QImage frame = pattern({20, 10}, QImage::Format_RGB32);
    const QImage copy = frame.copy();
    rotateImage(frame, 90);
    flipImage(frame, true, true);
    EXPECT_EQ(frame, copy);
}

TEST(PictureShapeTest, anEmptyPictureStaysEmpty)
{
    EXPECT_TRUE(rotateImage(QImage(), 90).isNull());
    EXPECT_TRUE(flipImage(QImage(), true, false).isNull());
}

TEST(PictureShapeTest, an8KFrameIsTurnedWhole)
{
    const QImage frame = pattern({7680, 4320}, QImage::Format_RGB32);
    const OrientationState state = {4, true, false};
    const QImage turned = preview(frame, state);
    ASSERT_EQ(turned.size(), QSize(4320, 7680));
    for (const QPoint corner :
        {QPoint(0, 0), QPoint(4319, 0), QPoint(0, 7679), QPoint(4319, 7679), QPoint(2160, 3840)}) {
        const QPoint from = origin(corner, frame.size(), state);
        EXPECT_EQ(turned.pixel(corner), frame.pixel(from));
    }
}

} // namespace tarnwell::test
