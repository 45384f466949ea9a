// SPDX-License-Identifier: MIT
#include "desktop/LateArrow.h"

#include <QApplication>
#include <QImage>
#include <QMenuBar>
#include <QPainter>
#include <QStyle>
#include <QToolButton>

#include <gtest/gtest.h>

namespace tarnwell::test
{

class LateArrowTest : public testing::Test
{
protected:
    ~LateArrowTest() override { QApplication::setStyle(m_usual); }

    static QIcon icon(QStyle::StandardPixmap kind = QStyle::SP_ToolBarHorizontalExtensionButton)
    {
        return QApplication::style()->standardIcon(kind);
    }

    static QImage drawn(const QIcon& icon, QIcon::Mode mode = QIcon::Normal)
    {
        return icon.pixmap(QSize(16, 16), mode).toImage();
    }

    static QImage painted(const QIcon& icon)
    {
        QImage picture(40, 40, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::white);
        QPainter painter(&picture);
        icon.paint(&painter, picture.rect());
        return picture;
    }

private:
    QString m_usual = QApplication::style()->name();
};

TEST_F(LateArrowTest, theArrowLooksAsItDoesWithout)
{
    const QIcon usual = icon();
    putOffArrowPicture();
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled})
        EXPECT_EQ(drawn(icon(), mode), drawn(usual, mode)) << mode;
    EXPECT_EQ(painted(icon()), painted(usual));
    EXPECT_EQ(icon().pixmap(QSize(16, 16), 2).toImage(), usual.pixmap(QSize(16, 16), 2).toImage());
    EXPECT_EQ(icon().availableSizes(), usual.availableSizes());
    EXPECT_EQ(icon().actualSize(QSize(100, 100)), usual.actualSize(QSize(100, 100)));
    EXPECT_FALSE(icon().isNull());
}

TEST_F(LateArrowTest, otherIconsAreTheStylesOwn)
{
    const QImage usual = drawn(icon(QStyle::SP_MessageBoxWarning));
    ASSERT_FALSE(usual.isNull());
    putOffArrowPicture();
    EXPECT_EQ(drawn(icon(QStyle::SP_MessageBoxWarning)), usual);
}

TEST_F(LateArrowTest, anArrowIsOfTheStyleThatIsThereWhenItIsDrawn)
{
    putOffArrowPicture();
    const QIcon arrow = icon();
    QApplication::setStyle(QStringLiteral("Windows"));
    EXPECT_EQ(drawn(arrow), drawn(icon()));
}

TEST_F(LateArrowTest, aMenuBarThatDoesNotFitShowsTheArrow)
{
    putOffArrowPicture();
    QMenuBar bar;
    for (int menu = 0; menu < 9; ++menu)
        bar.addMenu(QStringLiteral("A long title"));
    bar.resize(200, bar.sizeHint().height());
    bar.show();
    const auto* button = bar.findChild<QToolButton*>(QStringLiteral("qt_menubar_ext_button"));
    ASSERT_NE(button, nullptr);
    EXPECT_TRUE(button->isVisible());
    EXPECT_FALSE(drawn(button->icon()).isNull());
}

} // namespace tarnwell::test
