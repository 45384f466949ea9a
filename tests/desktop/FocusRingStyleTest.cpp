// SPDX-License-Identifier: MIT
#include "desktop/FocusRingStyle.h"

#include "desktop/ImageView.h"
#include "tests/support/RealInput.h"
#include "tests/support/WindowTest.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPalette>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace tarnwell::test
{

class FocusRingStyleTest : public testing::Test
{
protected:
    FocusRingStyleTest()
    {
        FocusRingStyle::install();
        auto* layout = new QVBoxLayout(&m_window);
        for (QWidget* widget :
            std::initializer_list<QWidget*>{&m_field, &m_item, &m_button, &m_view, &m_list})
            layout->addWidget(widget);
        m_item.setText(QStringLiteral("Press"));
        m_item.setFocusPolicy(Qt::TabFocus);
        m_item.setAutoRaise(true);
        m_button.setText(QStringLiteral("Press"));
        m_list.addItem(QStringLiteral("First"));
        m_field.setFocus();
        QPalette palette = m_window.palette();
        palette.setColor(QPalette::Highlight, highlight);
        m_window.setPalette(palette);
        m_window.show();
        waitForKeyboard(m_window);
    }

    /// Whether the widget's edge has the highlight's colour all around, and its middle has not.
    static bool hasRing(QWidget& widget)
    {
        const QImage picture = widget.grab().toImage();
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
    QToolButton m_item;
    QPushButton m_button;
    ImageView m_view;
    QListWidget m_list;
};

TEST_F(FocusRingStyleTest, theRingFollowsTheFocusThatTabMoves)
{
    QWidget* last = &m_field;
    for (QWidget* widget : std::initializer_list<QWidget*>{&m_item, &m_button, &m_view}) {
        SCOPED_TRACE(widget->metaObject()->className());
        EXPECT_FALSE(hasRing(*widget));
        realKeys("Tab");
        ASSERT_TRUE(widget->hasFocus());
        EXPECT_TRUE(hasRing(*widget));
        EXPECT_FALSE(hasRing(*last));
        last = widget;
    }
    realKeys("Tab");
    ASSERT_TRUE(m_list.hasFocus());
    EXPECT_FALSE(hasRing(*last));
    EXPECT_FALSE(hasRing(*m_list.viewport())) << "a list has a frame around its current row";
}

TEST_F(FocusRingStyleTest, aFocusThatTheKeyboardDidNotMoveHasNoRing)
{
    for (QWidget* widget : std::initializer_list<QWidget*>{&m_item, &m_button, &m_view}) {
        widget->setFocus(Qt::OtherFocusReason);
        ASSERT_TRUE(widget->hasFocus());
        EXPECT_FALSE(hasRing(*widget)) << widget->metaObject()->className();
    }
}

TEST_F(FocusRingStyleTest, theContentOfTheWidgetStaysVisible)
{
    const auto colourChanges = [this] {
        int changes = 0;
        const QImage picture = m_item.grab().toImage();
        for (int x = 4; x < picture.width() - 4; ++x)
            changes += picture.pixel(x, picture.height() / 2) != picture.pixel(x - 1, picture.height() / 2);
        return changes;
    };
    const int before = colourChanges();
    ASSERT_GT(before, 0) << "the text is not painted";
    realKeys("Tab");
    EXPECT_GE(colourChanges(), before);
}

TEST_F(FocusRingStyleTest, aSecondInstallationKeepsTheStyle)
{
    const QStyle* style = QApplication::style();
    FocusRingStyle::install();
    EXPECT_EQ(QApplication::style(), style);
}

} // namespace tarnwell::test
