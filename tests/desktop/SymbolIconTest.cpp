// SPDX-License-Identifier: MIT
#include "desktop/SymbolIcon.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

#include <gtest/gtest.h>

namespace tarnwell::test
{

class SymbolIconTest : public testing::Test
{
protected:
    SymbolIconTest() { setColours(Qt::darkBlue, Qt::darkYellow); }

    ~SymbolIconTest() override { QGuiApplication::setPalette(m_usual); }

    static void setColours(QColor enabled, QColor disabled)
    {
        QPalette palette = QGuiApplication::palette();
        palette.setColor(QPalette::Active, QPalette::ButtonText, enabled);
        palette.setColor(QPalette::Inactive, QPalette::ButtonText, enabled);
        palette.setColor(QPalette::Disabled, QPalette::ButtonText, disabled);
        palette.setColor(QPalette::HighlightedText, Qt::white);
        QGuiApplication::setPalette(palette);
    }

    static QImage drawn(const QIcon& icon, QIcon::Mode mode = QIcon::Normal)
    {
        return icon.pixmap(QSize(64, 64), 1, mode).toImage();
    }

    /// The colour of all fully opaque pixels; invalid if there are several or none.
    static QColor colour(const QImage& picture)
    {
        QColor found;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                if (pixel.alpha() != 255 || pixel == found)
                    continue;
                if (found.isValid())
                    return {};
                found = pixel;
            }
        }
        return found;
    }

    static bool isTransparent(const QImage& picture)
    {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (picture.pixelColor(x, y).alpha() != 0)
                    return false;
            }
        }
        return true;
    }

private:
    QPalette m_usual = QGuiApplication::palette();
};

TEST_F(SymbolIconTest, everySymbolIsDrawnInThePalettesColour)
{
    for (const char* name : {"flip-horizontally", "flip-vertically", "help", "open", "reset", "rotate-left",
             "rotate-right", "save", "video"}) {
        const QIcon icon = symbolIcon(QStringLiteral(":/symbols/%1.svg").arg(QString::fromLatin1(name)));
        EXPECT_EQ(colour(drawn(icon)), QColor(Qt::darkBlue)) << name;
    }
}

TEST_F(SymbolIconTest, noTwoSymbolsLookTheSame)
{
    QList<QImage> pictures;
    for (const char* name : {"flip-horizontally", "flip-vertically", "help", "open", "reset", "rotate-left",
             "rotate-right", "save", "video"}) {
        const QImage picture
            = drawn(symbolIcon(QStringLiteral(":/symbols/%1.svg").arg(QString::fromLatin1(name))));
        EXPECT_FALSE(pictures.contains(picture)) << name;
        pictures.append(picture);
    }
}

TEST_F(SymbolIconTest, followsALaterPalette)
{
    const QIcon icon = symbolIcon(QStringLiteral(":/symbols/open.svg"));
    EXPECT_EQ(colour(drawn(icon)), QColor(Qt::darkBlue));
    setColours(Qt::red, Qt::darkYellow);
    EXPECT_EQ(colour(drawn(icon)), QColor(Qt::red));
    setColours(Qt::darkBlue, Qt::darkYellow);
    EXPECT_EQ(colour(drawn(icon)), QColor(Qt::darkBlue));
}

TEST_F(SymbolIconTest, isDrawnInTheDisabledColourWhereItIsDisabled)
{
    const QIcon icon = symbolIcon(QStringLiteral(":/symbols/save.svg"));
    EXPECT_EQ(colour(drawn(icon, QIcon::Disabled)), QColor(Qt::darkYellow));
    EXPECT_EQ(colour(drawn(icon, QIcon::Selected)), QColor(Qt::white));
    EXPECT_EQ(colour(drawn(icon, QIcon::Active)), QColor(Qt::darkBlue));
}

TEST_F(SymbolIconTest, isDrawnAtTheSizeThatIsAskedFor)
{
    const QIcon icon = symbolIcon(QStringLiteral(":/symbols/open.svg"));
    for (const int side : {1, 16, 33, 256}) {
        EXPECT_EQ(icon.pixmap(QSize(side, side), 1).size(), QSize(side, side));
        const QPixmap fine = icon.pixmap(QSize(side, side), 2);
        EXPECT_EQ(fine.size(), QSize(2 * side, 2 * side));
        EXPECT_EQ(fine.devicePixelRatio(), 2);
    }
}

TEST_F(SymbolIconTest, isPaintedInThePaintersScale)
{
    QImage picture(128, 128, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(2);
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        symbolIcon(QStringLiteral(":/symbols/open.svg")).paint(&painter, QRect(0, 0, 64, 64));
    }
    picture.setDevicePixelRatio(1);
    EXPECT_EQ(picture, symbolIcon(QStringLiteral(":/symbols/open.svg")).pixmap(QSize(128, 128), 1).toImage());
}

TEST_F(SymbolIconTest, aMissingSymbolIsTransparent)
{
    EXPECT_TRUE(isTransparent(drawn(symbolIcon(QStringLiteral(":/symbols/missing.svg")))));
}

} // namespace tarnwell::test
