// SPDX-License-Identifier: MIT
#include "desktop/ElidedLabel.h"

#include "tests/support/Waiting.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QImage>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

namespace tarnwell::test
{

class ElidedLabelTest : public testing::Test
{
protected:
    ElidedLabelTest()
    {
        m_label.setAccessibleName(QStringLiteral("Details"));
        m_label.setText(text());
        m_label.setMargin(6);
        m_label.resize(m_label.sizeHint());
        m_label.show();
    }

    static QString text() { return QStringLiteral("1920 × 1080 · 00:01:15.50 · turned left"); }

    /// Sends the event of a pointer that rests on the label.
    void hover()
    {
        const QPoint centre = m_label.rect().center();
        QHelpEvent help(QEvent::ToolTip, centre, m_label.mapToGlobal(centre));
        QCoreApplication::sendEvent(&m_label, &help);
    }

    /// The columns at the left and the right edge that nothing is painted in.
    std::pair<int, int> emptyColumns()
    {
        const QImage picture = m_label.grab().toImage();
        const QRgb background = picture.pixel(0, 0);
        const auto isEmpty = [&](int x) {
            for (int y = 0; y < picture.height(); ++y) {
                if (picture.pixel(x, y) != background)
                    return false;
            }
            return true;
        };
        int left = 0;
        while (left < picture.width() && isEmpty(left))
            ++left;
        int right = 0;
        while (right < picture.width() - left && isEmpty(picture.width() - 1 - right))
            ++right;
        return {left, right};
    }

    ElidedLabel m_label;
};

TEST_F(ElidedLabelTest, showsATextThatFitsInWholeWithoutAToolTip)
{
    EXPECT_EQ(m_label.shownText(), text());
    hover();
    EXPECT_FALSE(QToolTip::isVisible());
}

TEST_F(ElidedLabelTest, shortensATextThatDoesNotFitAndShowsItAsToolTip)
{
    m_label.resize(120, m_label.height());
    EXPECT_TRUE(m_label.shownText().endsWith(QChar(0x2026))) << m_label.shownText().toStdString();
    EXPECT_TRUE(text().startsWith(m_label.shownText().chopped(1)));
    const auto [left, right] = emptyColumns();
    EXPECT_GE(left, 6);
    EXPECT_GE(right, 6);
    hover();
    EXPECT_TRUE(QToolTip::isVisible());
    EXPECT_EQ(QToolTip::text(), text());
    QToolTip::hideText();
}

TEST_F(ElidedLabelTest, isCentred)
{
    m_label.resize(m_label.width() + 200, m_label.height());
    const auto [left, right] = emptyColumns();
    EXPECT_GT(left, 50);
    EXPECT_LE(std::abs(left - right), 6) << left << " and " << right;
}

TEST_F(ElidedLabelTest, doesNotKeepAWindowWide)
{
    EXPECT_LT(m_label.minimumSizeHint().width(), 60);
    EXPECT_EQ(m_label.minimumSizeHint().height(), m_label.sizeHint().height());
}

TEST_F(ElidedLabelTest, isALabelWithANameAndTheWholeTextAsItsDescription)
{
    const QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&m_label);
    EXPECT_EQ(access->role(), QAccessible::StaticText);
    EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("Details"));
    m_label.resize(120, m_label.height());
    EXPECT_EQ(access->text(QAccessible::Description), text());
}

} // namespace tarnwell::test
