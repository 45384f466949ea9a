// SPDX-License-Identifier: MIT
// Compares the PNG icons with the SVG icon rendered at their sizes.
#include "desktop/PathText.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace tarnwell::test
{

namespace
{

// Tolerance per channel: the antialiasing of edges differs between versions of Qt.
constexpr int fewLevels = 24;

const std::string resources = TARNWELL_RESOURCES_FOLDER;

QImage drawing(int size)
{
    QImage picture(size, size, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer renderer(textOfPath(resources + "org.tarnwell.Tarnwell.svg"));
    EXPECT_TRUE(renderer.isValid());
    renderer.render(&painter);
    return picture;
}

int difference(QRgb left, QRgb right)
{
    return std::max({std::abs(qAlpha(left) - qAlpha(right)), std::abs(qRed(left) - qRed(right)),
        std::abs(qGreen(left) - qGreen(right)), std::abs(qBlue(left) - qBlue(right))});
}

int largestDifference(const QImage& left, const QImage& right)
{
    int largest = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x)
            largest = std::max(largest, difference(left.pixel(x, y), right.pixel(x, y)));
    }
    return largest;
}

} // namespace

class Icon : public testing::TestWithParam<int>
{
};

TEST_P(Icon, isTheDrawingAtItsSize)
{
    const int size = GetParam();
    const QImage icon(textOfPath(resources + "icons/" + std::to_string(size) + ".png"));
    ASSERT_EQ(icon.size(), QSize(size, size));
    EXPECT_TRUE(icon.hasAlphaChannel());
    EXPECT_LE(largestDifference(icon, drawing(size)), fewLevels);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Icon, testing::Values(48, 64, 128), testing::PrintToStringParamName());

} // namespace tarnwell::test
