// SPDX-License-Identifier: MIT
// The whole job in the real window with the mouse and the keyboard of the X server: open, turn, mirror, save
// in both modes, cancel. The argument is a folder for the sample, the saved videos and a screenshot of each
// step. Without an argument a temporary folder is used.
#include "desktop/PathText.h"
#include "tests/support/Files.h"
#include "tests/support/RealInput.h"
#include "tests/support/Samples.h"
#include "tests/support/Screen.h"
#include "tests/support/WindowTest.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QToolBar>

#include <filesystem>
#include <iostream>

namespace tarnwell::test
{

namespace
{

const SampleVideo sampleVideo = {.size = {960, 540}, .seconds = 12};
constexpr double middle = 6;
constexpr double fewGreyLevels = 4;

} // namespace

class Tour : public WindowTest
{
protected:
    void SetUp() override
    {
        const QStringList arguments = QApplication::arguments();
        m_results = arguments.size() > 1 ? pathOfText(arguments.at(1)) + "/" : folder();
        std::filesystem::create_directories(m_results);
        // Existing files would make the save panel ask for confirmation.
        for (const auto& name : namesIn(m_results)) {
            if (name.ends_with(".mp4") || name.ends_with(".png"))
                std::filesystem::remove(m_results + name);
        }
        makeSampleVideo(sample(), sampleVideo);
    }

    std::string sample() const { return m_results + "sample.mp4"; }
    std::string result(const std::string& name) const { return m_results + name; }

    /// Saves a screenshot and prints its name.
    void show(const std::string& what)
    {
        paintEveryWindow();
        const QString name
            = QStringLiteral("%1 %2.png").arg(++m_step, 2, 10, QLatin1Char('0')).arg(textOf(what));
        EXPECT_TRUE(window().screen()->grabWindow(0).save(textOfPath(m_results) + name));
        std::cout << name.toStdString() << std::endl;
    }

    void clickItem(const char* actionName)
    {
        realClick(*find<QToolBar>("toolBar").widgetForAction(&action(actionName)));
    }

    void clickButton(const char* text)
    {
        AlertDialog* alert = shownAlert();
        for (QAbstractButton* button : alert->buttons()) {
            if (button->text() == QString::fromLatin1(text)) {
                realClick(*button);
                return;
            }
        }
        FAIL() << "no button " << text;
    }

    void expectShown(int quarterTurnsLeft, bool vertically, bool horizontally)
    {
        EXPECT_EQ(shownPicture().convertToFormat(QImage::Format_ARGB32),
            expectedPicture(m_still, quarterTurnsLeft, vertically, horizontally));
    }

    void openSample()
    {
        clickItem("openToolBarBTN");
        shownPanel();
        realText(sample());
        show("choosing a video");
        realKeys("Return");
        ASSERT_TRUE(waitUntil([this] { return action("rotateLeftBTN").isEnabled(); }));
        m_still = shownPicture();
        EXPECT_LT(meanDifference(m_still, decodedFrame(sample(), middle)), fewGreyLevels);
        show("opened");
    }

    void turnAndMirror()
    {
        clickItem("rotateLeftBTN");
        expectShown(1, false, false);
        show("rotated left");
        clickItem("flipHorizontallyBTN");
        expectShown(1, false, true);
        show("flipped horizontally");
        clickItem("resetBTN");
        expectShown(0, false, false);
        show("reset");
        realKeys("ctrl+r");
        expectShown(3, false, false);
        show("rotated right");
    }

    /// Opens the save panel with the keyboard and replaces the proposed name by `path`.
    void saveAs(const std::string& path)
    {
        waitForKeyboard(window());
        realKeys("ctrl+s");
        PathPanel* panel = shownPanel();
        EXPECT_EQ(panel->nameField()->text(), QStringLiteral("Rotated"));
        show("saving");
        realKeys("ctrl+a");
        realText(path);
        realKeys("Return");
        shownAlert();
    }

    void expectSuccess(const std::string& path)
    {
        ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
        EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Rotated Successfully!"));
        show("saved");
        clickButton("OK");
        EXPECT_LT(meanDifference(shownPicture(), decodedFrame(path, middle)), fewGreyLevels);
    }

    void saveByFlag()
    {
        saveAs(result("turned by its flag.mp4"));
        show("choosing how");
        clickButton("Fix Flag");
        expectSuccess(result("turned by its flag.mp4"));
    }

    void saveByTranscoding()
    {
        saveAs(result("turned frame by frame.mp4"));
        clickButton("Transcode");
        ASSERT_TRUE(waitUntil([this] { return find<QProgressBar>("progressBar").value() > 0; }));
        show("transcoding");
        ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
        expectSuccess(result("turned frame by frame.mp4"));
    }

    void cancelASave()
    {
        saveAs(result("cancelled.mp4"));
        clickButton("Transcode");
        ASSERT_TRUE(waitUntil(
            [this] { return find<QPushButton>("progressCancel").isEnabled() && isProgressShown(); }));
        ASSERT_TRUE(waitUntil([this] { return find<QProgressBar>("progressBar").value() > 0; }));
        realClick(find<QPushButton>("progressCancel"));
        ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
        EXPECT_FALSE(isAlertShown());
        EXPECT_FALSE(exists(result("cancelled.mp4")));
        show("cancelled");
    }

    void readHelp()
    {
        waitForKeyboard(window());
        realKeys("F1");
        ASSERT_TRUE(waitUntil([this] { return find<QDialog>("helpWindow").isVisible(); }));
        waitForKeyboard(find<QDialog>("helpWindow"));
        show("help");
        realClick(find<QPushButton>("helpOK"));
        EXPECT_FALSE(find<QDialog>("helpWindow").isVisible());
    }

private:
    std::string m_results;
    QImage m_still;
    int m_step = 0;
};

TEST_F(Tour, theWholeJob)
{
    const std::string original = contentsOf(sample());
    start();
    show("empty window");
    openSample();
    turnAndMirror();
    saveByFlag();
    saveByTranscoding();
    cancelASave();
    readHelp();
    EXPECT_EQ(contentsOf(sample()), original);
}

} // namespace tarnwell::test
