// SPDX-License-Identifier: MIT
#include "desktop/SheetQueue.h"

#include "desktop/Alert.h"
#include "desktop/AlertDialog.h"
#include "desktop/Sheet.h"
#include "tests/desktop/ParentWindow.h"
#include "tests/support/DragSource.h"
#include "tests/support/EventCounter.h"
#include "tests/support/RealInput.h"
#include "tests/support/Screen.h"

#include <QAction>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QPointer>
#include <QWindow>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tarnwell::test
{

class SheetQueueTest : public testing::Test
{
protected:
    std::unique_ptr<Sheet> newSheet()
    {
        auto sheet = std::make_unique<Sheet>(&m_window);
        sheet->resize(300, 200);
        return sheet;
    }

    /// Creates that many sheets and begins them in their order.
    std::vector<std::unique_ptr<Sheet>> begun(std::size_t count)
    {
        std::vector<std::unique_ptr<Sheet>> sheets;
        while (sheets.size() < count) {
            sheets.push_back(newSheet());
            m_sheets.begin(sheets.back().get());
        }
        return sheets;
    }

    ParentWindow m_window;
    SheetQueue m_sheets{m_window};
};

TEST_F(SheetQueueTest, anAlertWaitsForTheSheetThatIsUp)
{
    const auto progress = newSheet();
    m_sheets.begin(progress.get());
    Alert().beginSheetModal(m_window, m_sheets);
    const QPointer<AlertDialog> alert = m_window.findChild<AlertDialog*>();
    ASSERT_FALSE(alert.isNull());
    QCoreApplication::processEvents();
    EXPECT_FALSE(alert->isVisible());
    EXPECT_TRUE(progress->isVisible());
    m_sheets.end(progress.get());
    EXPECT_FALSE(progress->isVisible());
    EXPECT_TRUE(alert->isVisible());
}

TEST_F(SheetQueueTest, sheetsAppearOneByOneInTheirOrderAndTheQueueIsBusyUntilTheLastEnds)
{
    EXPECT_FALSE(m_sheets.isBusy());
    const auto sheets = begun(3);
    for (std::size_t shown = 0; shown < sheets.size(); ++shown) {
        for (std::size_t i = 0; i < sheets.size(); ++i)
            EXPECT_EQ(sheets[i]->isVisible(), i == shown) << i << " while " << shown << " is shown";
        EXPECT_TRUE(m_sheets.isBusy());
        m_sheets.end(sheets[shown].get());
        EXPECT_FALSE(sheets[shown]->isVisible());
    }
    EXPECT_FALSE(m_sheets.isBusy());
}

TEST_F(SheetQueueTest, aWaitingSheetThatIsEndedNeverAppears)
{
    const auto first = newSheet();
    const auto second = newSheet();
    const auto third = newSheet();
    std::optional<int> result;
    m_sheets.begin(first.get());
    m_sheets.begin(second.get(), [&](int its) { result = its; });
    m_sheets.begin(third.get());
    m_sheets.end(second.get());
    EXPECT_EQ(result, QDialog::Accepted);
    EXPECT_TRUE(first->isVisible());
    m_sheets.end(first.get());
    EXPECT_FALSE(second->isVisible());
    EXPECT_TRUE(third->isVisible());
}

TEST_F(SheetQueueTest, aDestroyedSheetLeavesTheQueue)
{
    auto sheets = begun(4);
    sheets[1].reset(); // waiting
    EXPECT_TRUE(sheets[0]->isVisible());
    EXPECT_FALSE(sheets[2]->isVisible());
    sheets[0].reset(); // shown
    EXPECT_TRUE(sheets[2]->isVisible());
    EXPECT_FALSE(sheets[3]->isVisible());
    m_sheets.end(sheets[2].get());
    EXPECT_TRUE(sheets[3]->isVisible());
}

TEST_F(SheetQueueTest, aSheetThatBeginsTwiceStaysWhereItIs)
{
    const auto first = newSheet();
    const auto second = newSheet();
    int ends = 0;
    m_sheets.begin(first.get(), [&](int) { ++ends; });
    m_sheets.begin(second.get(), [&](int) { ++ends; });
    m_sheets.begin(first.get(), [&](int) { ++ends; });
    m_sheets.begin(second.get(), [&](int) { ++ends; });
    m_sheets.end(first.get());
    EXPECT_TRUE(second->isVisible());
    m_sheets.end(second.get());
    EXPECT_FALSE(first->isVisible());
    EXPECT_FALSE(second->isVisible());
    EXPECT_EQ(ends, 2);
}

TEST_F(SheetQueueTest, aSheetCanBeginAgainOnceItHasEnded)
{
    const auto sheet = newSheet();
    int ends = 0;
    for (int round = 1; round <= 3; ++round) {
        m_sheets.begin(sheet.get(), [&](int) { ++ends; });
        EXPECT_TRUE(sheet->isVisible());
        m_sheets.end(sheet.get());
        EXPECT_EQ(ends, round);
    }
}

TEST_F(SheetQueueTest, completionComesWithTheResultWhenTheSheetHasGone)
{
    const auto sheet = newSheet();
    std::optional<int> result;
    m_sheets.begin(sheet.get(), [&](int its) {
        EXPECT_FALSE(sheet->isVisible());
        result = its;
    });
    sheet->done(7);
    EXPECT_EQ(result, 7);
}

TEST_F(SheetQueueTest, completionMayBeginASheet)
{
    const auto first = newSheet();
    const auto second = newSheet();
    const auto third = newSheet();
    m_sheets.begin(first.get(), [&](int) { m_sheets.begin(third.get()); });
    m_sheets.begin(second.get());
    m_sheets.end(first.get());
    EXPECT_TRUE(second->isVisible());
    EXPECT_FALSE(third->isVisible());
    m_sheets.end(second.get());
    EXPECT_TRUE(third->isVisible());
}

TEST_F(SheetQueueTest, completionMayBeginTheSameSheet)
{
    const auto sheet = newSheet();
    m_sheets.begin(sheet.get(), [&](int) { m_sheets.begin(sheet.get()); });
    m_sheets.end(sheet.get());
    EXPECT_TRUE(sheet->isVisible());
}

TEST_F(SheetQueueTest, aSheetThatAlwaysBeginsAgainEndsOnceAtATime)
{
    const auto sheet = newSheet();
    int ends = 0;
    const std::function<void(int)> beginAgain = [&](int) {
        ++ends;
        m_sheets.begin(sheet.get(), beginAgain);
    };
    m_sheets.begin(sheet.get(), beginAgain);
    for (int round = 1; round <= 3; ++round) {
        m_sheets.end(sheet.get());
        EXPECT_EQ(ends, round);
        EXPECT_TRUE(sheet->isVisible());
    }
}

TEST_F(SheetQueueTest, aSheetBlocksItsWindowUntilTheLastHasEnded)
{
    const auto first = newSheet();
    const auto second = newSheet();
    m_sheets.begin(first.get());
    m_sheets.begin(second.get());
    waitForKeyboard(*first);
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 0);
    m_sheets.end(first.get());
    waitForKeyboard(*second);
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 0);
    m_sheets.end(second.get());
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 1);
}

TEST_F(SheetQueueTest, aSheetIsOnTheScreenAfterTheWaitForItsPainting)
{
    const auto sheet = newSheet();
    QPalette palette = sheet->palette();
    palette.setColor(QPalette::Window, Qt::magenta);
    sheet->setPalette(palette);
    m_sheets.begin(sheet.get());
    m_sheets.waitUntilPainted(sheet.get());
    // The event loop does not run from here on.
    EXPECT_TRUE(sheet->windowHandle()->isExposed());
    EXPECT_EQ(colourOnScreen(sheet->mapToGlobal(sheet->rect().center())), QColor(Qt::magenta));
}

TEST_F(SheetQueueTest, thePaintingOfAWaitingSheetIsNotWaitedFor)
{
    const auto sheets = begun(2);
    m_sheets.waitUntilPainted(sheets[1].get());
    EXPECT_TRUE(sheets[0]->isVisible());
    EXPECT_FALSE(sheets[1]->isVisible());
}

TEST_F(SheetQueueTest, anActionOfEverySheetWorksInEachOfThem)
{
    QAction help;
    help.setShortcut(Qt::Key_F1);
    int calls = 0;
    QObject::connect(&help, &QAction::triggered, &help, [&] { ++calls; });
    m_sheets.addActionOfEverySheet(&help);
    for (const auto& sheet : begun(2)) {
        waitForKeyboard(*sheet);
        const int earlier = calls;
        realKeys("F1");
        EXPECT_EQ(calls, earlier + 1);
        m_sheets.end(sheet.get());
    }
}

/// Accepts drops on the window except on its button.
class DropArea : public QWidget
{
public:
    explicit DropArea(QWidget& window)
        : QWidget(&window)
    {
        setAcceptDrops(true);
        setGeometry(0, 50, window.width(), window.height() - 50);
        show();
    }

    /// A place that no sheet covers.
    QPoint freePlace() { return screenPosition(*this, rect().bottomLeft() + QPoint(30, -30)); }
    int drops() const { return m_drops; }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }

    void dropEvent(QDropEvent* event) override
    {
        ++m_drops;
        event->acceptProposedAction();
    }

private:
    int m_drops = 0;
};

TEST_F(SheetQueueTest, nothingCanBeDroppedOnTheWindowWhileASheetIsUp)
{
    DropArea area(m_window);
    const auto sheet = newSheet();
    m_sheets.begin(sheet.get());
    waitForKeyboard(*sheet);
    {
        DragSource source("file:///clip");
        source.dragTo(area.freePlace());
        EXPECT_FALSE(source.drop());
    }
    m_sheets.end(sheet.get());
    EXPECT_EQ(area.drops(), 0);
    DragSource source("file:///clip");
    source.dragTo(area.freePlace());
    source.waitUntilAccepted();
    EXPECT_TRUE(source.drop());
    EXPECT_TRUE(waitUntil([&] { return area.drops() == 1; }));
}

TEST_F(SheetQueueTest, aDragThatHoversWhenASheetAppearsCannotBeDropped)
{
    DropArea area(m_window);
    waitForKeyboard(m_window); // the window manager has placed it
    DragSource source("file:///clip");
    source.dragTo(area.freePlace());
    source.waitUntilAccepted();
    const auto sheet = newSheet();
    m_sheets.begin(sheet.get());
    m_sheets.waitUntilPainted(sheet.get());
    const EventCounter arrivals(*m_window.windowHandle(), QEvent::Drop);
    source.drop();
    EXPECT_TRUE(waitUntil([&] { return arrivals.count() == 1; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(area.drops(), 0);
}

} // namespace tarnwell::test
