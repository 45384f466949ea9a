// SPDX-License-Identifier: MIT
// Exports by the real encoder with the progress sheet.
#include "tests/support/Files.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QAction>
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

// The codec leaves no choice of a mode.
const SampleVideo shortVideo = {.codec = "mpeg4"};
/// Its export prints several percentages.
const SampleVideo largeVideo = {.size = {1280, 720}, .seconds = 4, .codec = "mpeg4"};
/// Its export takes long enough for a cancel after the first percentage.
const SampleVideo longVideo = {.size = {1280, 720}, .seconds = 12, .codec = "mpeg4"};

/// The values of the lines "Percent : ", limited to the range of the bar.
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

/// The values without repetitions, as a progress bar that starts at 0 emits them.
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

} // namespace

class RealExportTest : public WindowTest
{
protected:
    void SetUp() override { start(); }

    void TearDown() override { expectOriginal(); }

    void open(const SampleVideo& video)
    {
        expectOriginal();
        makeSampleVideo(folder() + "clip.mp4", video);
        m_original = contentsOf(folder() + "clip.mp4");
        ASSERT_TRUE(drop(folder() + "clip.mp4"));
        waitForKeyboard(window());
    }

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
    void expectOriginal() { EXPECT_EQ(contentsOf(folder() + "clip.mp4"), m_original); }

    std::string m_original; // the bytes of the open video
};

TEST_F(RealExportTest, percentagesArriveInOrderOnTheMainThreadAndMatchTheLines)
{
    open(largeVideo);
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
    AlertDialog* alert = shownAlert();
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
    open(longVideo);
    saveByPanel(output());
    ASSERT_TRUE(waitUntil([this] { return bar().value() > 0; }));
    EXPECT_FALSE(children().empty());
    QTest::mouseClick(&find<QPushButton>("progressCancel"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
    EXPECT_EQ(children(), "");
    EXPECT_FALSE(exists(output()));
    EXPECT_FALSE(isAlertShown());
    waitForKeyboard(window());
    open(shortVideo);
    saveByPanel(output());
    AlertDialog* alert = shownAlert();
    EXPECT_EQ(alert->text(), QStringLiteral("Video Processed Successfully!"));
    answer(alert, "OK");
    EXPECT_FALSE(decodedFrame(output(), 1).isNull());
}

TEST_F(RealExportTest, nothingStaysInTheTemporaryFolderButTheEmptyFolderOfStills)
{
    open(shortVideo);
    saveByPanel(output());
    answer(shownAlert(), "OK");
    EXPECT_FALSE(decodedFrame(output(), 1).isNull());
    int folders = 0;
    for (const auto& name : namesIn(ownTemporaryFolder())) {
        const std::string path = ownTemporaryFolder() + "/" + name + "/";
        if (path == folder())
            continue;
        ++folders;
        EXPECT_TRUE(namesIn(path).empty()) << path;
    }
    EXPECT_EQ(folders, 1);
    EXPECT_EQ(namesIn(folder()), (std::vector<std::string>{"clip.mp4", "out.mp4"}));
}

// A cancel before the encoder handles SIGTERM: see OlderFileTest and CallOrderTest.
TEST_F(RealExportTest, aCancelDuringTheWorkKeepsTheOlderFile)
{
    open(longVideo);
    const std::string older = "an older video";
    writeFile(output(), older);
    saveByPanel(output());
    answerReplaceQuestion("&Yes");
    ASSERT_TRUE(waitUntil([this] { return bar().value() > 0; }));
    QTest::mouseClick(&find<QPushButton>("progressCancel"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
    EXPECT_FALSE(isAlertShown());
    EXPECT_EQ(namesIn(folder()), (std::vector<std::string>{"clip.mp4", "out.mp4"}));
    EXPECT_EQ(contentsOf(output()), older);
}

} // namespace tarnwell::test
