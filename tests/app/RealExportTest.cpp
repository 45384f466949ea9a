// SPDX-License-Identifier: MIT
// Exports by the real encoder, watched through the real progress sheet.
#include "tests/support/Files.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QAction>
#include <QEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <sstream>

namespace tarnwell::test
{

namespace
{

const SampleVideo longVideo = {.size = {1280, 720}, .seconds = 12, .codec = "mpeg4"}; // no choice of a mode

/// What the lines "Percent : " say, as a bar from 0 to 100 shows it.
std::vector<int> printedPercentages(const std::string& printed)
{
    const std::string label = "Percent : ";
    std::vector<int> percentages;
    std::istringstream lines(printed);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(label))
            percentages.push_back(std::clamp(static_cast<int>(std::stod(line.substr(label.size()))), 0, 100));
    }
    return percentages;
}

/// A bar tells of a value only when it changes, and it starts at 0.
std::vector<int> changesOf(const std::vector<int>& values)
{
    std::vector<int> changes;
    int last = 0;
    for (const int value : values) {
        if (value != last)
            changes.push_back(value);
        last = value;
    }
    return changes;
}

/// Clicks a button whenever it becomes enabled, sooner than any user could.
class ClickWhenEnabled : public QObject
{
public:
    explicit ClickWhenEnabled(QPushButton& button)
        : m_button(button)
    {
        button.installEventFilter(this);
    }

    int count() const { return m_count; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange && m_button.isEnabled()) {
            ++m_count;
            m_button.click();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QPushButton& m_button;
    int m_count = 0;
};

} // namespace

class RealExportTest : public WindowTest
{
protected:
    void SetUp() override
    {
        makeSampleVideo(folder() + "clip.mp4", longVideo);
        m_original = contentsOf(folder() + "clip.mp4");
        start();
        ASSERT_TRUE(drop(folder() + "clip.mp4"));
        waitForKeyboard(window());
    }

    void TearDown() override { EXPECT_EQ(contentsOf(folder() + "clip.mp4"), m_original); }

    std::string output() const { return folder() + "out.mp4"; }
    QProgressBar& bar() { return find<QProgressBar>("progressBar"); }

    static std::string children()
    {
        std::string all;
        for (const auto& thread : namesIn("/proc/self/task"))
            all += contentsOf("/proc/self/task/" + thread + "/children");
        return all;
    }

private:
    std::string m_original;
};

TEST_F(RealExportTest, percentagesArriveInOrderOnTheMainThreadAndMatchTheLines)
{
    std::vector<int> shown;
    bool onMainThread = true;
    bool visible = true;
    const auto* mainThread = QThread::currentThread();
    QObject::connect(&bar(), &QProgressBar::valueChanged, &bar(), [&](int value) {
        onMainThread = onMainThread && QThread::currentThread() == mainThread;
        if (value == 0)
            return; // the sheet sets the bar back at its beginning and end
        visible = visible && isProgressShown();
        shown.push_back(value);
    });
    testing::internal::CaptureStdout();
    saveByPanel(output());
    QMessageBox* alert = shownAlert();
    const auto printed = printedPercentages(testing::internal::GetCapturedStdout());
    EXPECT_EQ(alert->text(), QStringLiteral("Video Processed Successfully!"));
    answer(alert, "OK");
    EXPECT_GE(printed.size(), 2U);
    EXPECT_TRUE(std::is_sorted(printed.begin(), printed.end()));
    EXPECT_EQ(shown, changesOf(printed));
    EXPECT_TRUE(onMainThread);
    EXPECT_TRUE(visible);
}

TEST_F(RealExportTest, cancelEndsTheEncoderAndTheNextRunWorks)
{
    saveByPanel(output());
    ASSERT_TRUE(waitUntil([this] { return bar().value() > 0; }));
    EXPECT_FALSE(children().empty());
    QTest::mouseClick(&find<QPushButton>("progressCancel"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
    EXPECT_EQ(children(), "");
    EXPECT_FALSE(exists(output()));
    EXPECT_FALSE(isAlertShown());
    waitForKeyboard(window());
    saveByPanel(output());
    QMessageBox* alert = shownAlert();
    EXPECT_EQ(alert->text(), QStringLiteral("Video Processed Successfully!"));
    answer(alert, "OK");
    EXPECT_FALSE(decodedFrame(output(), 10).isNull());
}

TEST_F(RealExportTest, nothingStaysInTheTemporaryFolder)
{
    saveByPanel(output());
    answer(shownAlert(), "OK");
    EXPECT_FALSE(decodedFrame(output(), 10).isNull());
    for (const auto& name : namesIn(ownTemporaryFolder()))
        EXPECT_EQ(folder(), ownTemporaryFolder() + "/" + name + "/") << "left over";
    EXPECT_EQ(namesIn(folder()), (std::vector<std::string>{"clip.mp4", "out.mp4"}));
}

TEST_F(RealExportTest, aCancelAtTheFirstMomentKeepsTheOlderFileThatWasToBeReplaced)
{
    ClickWhenEnabled click(find<QPushButton>("progressCancel"));
    for (int round = 0; round < 10 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        waitForKeyboard(window());
        const std::string older = "an older video " + std::to_string(round);
        writeFile(output(), older);
        saveByPanel(output());
        answer(shownAlert(), "&Yes"); // the panel's question about replacing
        ASSERT_TRUE(waitUntil([&] { return click.count() == round + 1 && !isProgressShown(); }));
        EXPECT_FALSE(exists(output())); // it would pass for the result
        const auto names = namesIn(folder());
        EXPECT_TRUE(std::any_of(names.begin(), names.end(),
            [&](const std::string& name) { return contentsOf(folder() + name) == older; }));
    }
    EXPECT_FALSE(isAlertShown());
}

} // namespace tarnwell::test
