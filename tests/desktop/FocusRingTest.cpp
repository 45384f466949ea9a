// SPDX-License-Identifier: MIT
#include "desktop/FocusRing.h"

#include "tests/support/RealInput.h"
#include "tests/support/WindowTest.h"

#include <QImage>
#include <QLineEdit>
#include <QPalette>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace tarnwell::test
{

class FocusRingTest : public testing::Test
{
protected:
    FocusRingTest()
    {
        auto* layout = new QVBoxLayout(&m_window);
        layout->addWidget(&m_field);
        layout->addWidget(&m_button);
        m_button.setText(QStringLiteral("Press"));
        m_button.setFocusPolicy(Qt::TabFocus);
        m_button.setAutoRaise(true);
        new FocusRing(m_button);
        m_field.setFocus();
        QPalette palette = m_window.palette();
        palette.setColor(QPalette::Highlight, highlight);
        m_window.setPalette(palette);
        m_window.show();
        waitForKeyboard(m_window);
    }

    /// Whether the button's edge has the highlight's colour all around, and its middle has not.
    bool hasRing()
    {
        const QImage picture = m_button.grab().toImage();
        const QRect edge = picture.rect().adjusted(0, 0, -1, -1);
        for (const QPoint place : {edge.topLeft(), edge.topRight(), edge.bottomLeft(), edge.bottomRight(),
                 QPoint(edge.center().x(), edge.top()), QPoint(edge.center().x(), edge.bottom()),
                 QPoint(edge.left(), edge.center().y()), QPoint(edge.right(), edge.center().y())}) {
            if (picture.pixelColor(place) != highlight)
                return false;
        }
        return picture.pixelColor(edge.center().x(), edge.top() + 5) != highlight;
    }

    static constexpr QColor highlight = QColor(255, 0, 255);

    QWidget m_window;
    QLineEdit m_field;
    QToolButton m_button;
};

TEST_F(FocusRingTest, appearsWhenTheKeyboardArrivesByTabAndGoesWithIt)
{
    EXPECT_FALSE(hasRing());
    realKeys("Tab");
    ASSERT_TRUE(m_button.hasFocus());
    EXPECT_TRUE(hasRing());
    realKeys("shift+Tab");
    ASSERT_TRUE(m_field.hasFocus());
    EXPECT_FALSE(hasRing());
}

TEST_F(FocusRingTest, isNotForThoseWhoUseThePointer)
{
    m_button.setFocus(Qt::OtherFocusReason);
    ASSERT_TRUE(m_button.hasFocus());
    EXPECT_FALSE(hasRing());
}

TEST_F(FocusRingTest, leavesTheWidgetItselfVisible)
{
    const auto colours = [this] {
        int different = 0;
        const QImage picture = m_button.grab().toImage();
        for (int x = 4; x < picture.width() - 4; ++x)
            different += picture.pixel(x, picture.height() / 2) != picture.pixel(x - 1, picture.height() / 2);
        return different;
    };
    const int before = colours();
    ASSERT_GT(before, 0) << "the text is not painted";
    realKeys("Tab");
    EXPECT_GE(colours(), before);
}

} // namespace tarnwell::test
