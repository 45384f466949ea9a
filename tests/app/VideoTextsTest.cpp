// SPDX-License-Identifier: MIT
// What the window says about the open video: its title and the line below the picture.
#include "app/AppDelegate.h"
#include "app/PictureDescription.h"
#include "probe/FileProbe.h"
#include "tests/app/ExportTest.h"

#include <QLabel>
#include <QWindow>

#include <limits>

namespace tarnwell::test
{

namespace
{

/// The title that the window manager receives.
std::string titleOf(const QWidget& widget)
{
    return widget.windowHandle()->title().toStdString();
}

} // namespace

class TitleTest : public FakeToolsTest
{
protected:
    void open(const std::string& name)
    {
        writeFile(folder() + name, "bytes");
        ASSERT_TRUE(drop(folder() + name));
    }

    std::string title() { return titleOf(window()); }
};

TEST_F(TitleTest, isTheProgramsNameBeforeTheFirstVideo)
{
    start();
    EXPECT_EQ(title(), "Tarnwell");
}

TEST_F(TitleTest, beginsWithTheNameOfTheShownVideo)
{
    start();
    open("first.mp4");
    EXPECT_EQ(title(), "first.mp4 — Tarnwell");
    open("second, with [*] and 100%1.mov");
    EXPECT_EQ(title(), "second, with [*] and 100%1.mov — Tarnwell");
    tools().setSniffer(sniffing(soundReport()));
    open("refused.mp3");
    EXPECT_EQ(title(), "second, with [*] and 100%1.mov — Tarnwell");
    answer(shownAlert(), "OK");
}

TEST_F(TitleTest, noSheetRepeatsTheProgramsName)
{
    start();
    openVideo();
    type(QKeySequence(QStringLiteral("Ctrl+O")));
    EXPECT_EQ(titleOf(*shownPanel()), "Open Video");
    QTest::keyClick(shownPanel(), Qt::Key_Escape);
    waitForKeyboard(window());
    type(QKeySequence(Qt::Key_F1));
    auto& help = find<QDialog>("helpWindow");
    ASSERT_TRUE(waitUntil([&help] { return help.isVisible(); }));
    EXPECT_EQ(titleOf(help), "Help");
    QTest::keyClick(&help, Qt::Key_Escape);
    waitForKeyboard(window());
    type(QKeySequence(QStringLiteral("Ctrl+S")));
    EXPECT_EQ(titleOf(*shownPanel()), "Save Video");
    choose(shownPanel(), folder() + "out.mp4");
    EXPECT_EQ(titleOf(*shownAlert()), "Saving Video");
    tools().setCreator("wait-for " + folder() + "go\n" + stillScript());
    answer(shownAlert(), "Transcode");
    ASSERT_TRUE(waitUntil([this] { return isProgressShown(); }));
    EXPECT_EQ(titleOf(find<QDialog>("progressWindow")), "Saving Video");
    writeFile(folder() + "go", "");
    EXPECT_EQ(titleOf(*shownAlert()), "Saving Video");
    answer(shownAlert(), "OK");
    tools().setSniffer(sniffing(soundReport()));
    open("refused.mp3");
    EXPECT_EQ(titleOf(find<QDialog>("progressWindow")), "Opening Video");
    EXPECT_EQ(titleOf(*shownAlert()), "Opening Video");
    answer(shownAlert(), "OK");
}

class ProgressTitleTest : public ExportTest
{
};

TEST_F(ProgressTitleTest, beginsWithThePercentageDuringASave)
{
    save(inFolder("wait-for @start\nerror time=00:00:03.99\nwait-for @go\n") + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return isProgressShown(); }));
    EXPECT_EQ(titleOf(window()), "0% clip.mp4 — Tarnwell");
    writeFile(folder() + "start", "");
    ASSERT_TRUE(waitUntil([this] { return bar().value() > 0; }));
    EXPECT_EQ(titleOf(window()), "49% clip.mp4 — Tarnwell");
    writeFile(folder() + "go", "");
    shownAlert();
    EXPECT_EQ(titleOf(window()), "clip.mp4 — Tarnwell");
    finish();
}

TEST_F(ProgressTitleTest, showsAtMostAHundredPercent)
{
    save(inFolder("error time=00:09:00.00\nwait-for @go\n") + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return bar().value() > 0; }));
    EXPECT_EQ(titleOf(window()), "100% clip.mp4 — Tarnwell");
    writeFile(folder() + "go", "");
    finish();
}

TEST_F(ProgressTitleTest, aReportAfterTheEndDoesNotReturnToTheTitle)
{
    VideoTexts texts(application().interface().outlets());
    texts.setVideo(FileProbe(folder() + "clip.mp4", tools().context()));
    texts.beginProgress();
    texts.setProgress(98);
    EXPECT_EQ(titleOf(window()), "98% clip.mp4 — Tarnwell");
    texts.endProgress();
    texts.setProgress(99);
    EXPECT_EQ(titleOf(window()), "clip.mp4 — Tarnwell");
}

TEST_F(ProgressTitleTest, isGoneAfterACancel)
{
    save("error time=00:00:04.00\nhang\n");
    cancelWhenPossible();
    expectIdle();
    EXPECT_EQ(titleOf(window()), "clip.mp4 — Tarnwell");
}

class VideoDetailsTest : public FakeToolsTest
{
protected:
    QLabel& details() { return find<QLabel>("videoDetails"); }

    std::string text() { return details().text().toStdString(); }
};

TEST_F(VideoDetailsTest, areHiddenBeforeTheFirstVideo)
{
    start();
    EXPECT_FALSE(details().isVisible());
    openVideo();
    EXPECT_TRUE(details().isVisible());
    EXPECT_EQ(details().accessibleName(), QStringLiteral("Video Details"));
}

TEST_F(VideoDetailsTest, saySizeDurationAndBytesAndFollowEveryActionOnThePicture)
{
    tools().setSniffer(sniffing(reportOf({.width = 1920, .height = 1080, .duration = "75.5"})));
    start();
    openVideo();
    const std::string facts = "1920 × 1080 · 00:01:15.50 · 5 bytes";
    EXPECT_EQ(text(), facts);
    const std::pair<const char*, const char*> steps[] = {
        {"rotateLeftBTN", " · turned left"},
        {"flipHorizontallyBTN", " · turned left, mirrored horizontally"},
        {"rotateRightBTN", " · mirrored horizontally"},
        {"flipVerticallyBTN", " · mirrored vertically and horizontally"},
        {"resetBTN", ""},
    };
    for (const auto& [name, words] : steps) {
        action(name).trigger();
        EXPECT_EQ(text(), facts + words);
    }
}

TEST_F(VideoDetailsTest, areThoseOfTheShownVideo)
{
    start();
    openVideo();
    action("rotateRightBTN").trigger();
    tools().setSniffer(sniffing(soundReport()));
    writeFile(folder() + "refused.mp3", "other bytes");
    ASSERT_TRUE(drop(folder() + "refused.mp3"));
    answer(shownAlert(), "OK");
    EXPECT_EQ(text(), "320 × 240 · 00:00:08.00 · 5 bytes · turned right");
    tools().setSniffer(sniffing(reportOf({.width = 1280, .height = 720, .rotate = "90"})));
    writeFile(folder() + "second.mp4", "the bytes of another");
    ASSERT_TRUE(drop(folder() + "second.mp4"));
    EXPECT_EQ(text(), "720 × 1280 · 00:00:08.00 · 20 bytes");
}

TEST_F(VideoDetailsTest, leaveOutADurationThatIsUnknownOrNoTime)
{
    FileProbe probe(folder() + "nothing.mp4", tools().context());
    probe.videoWidth = 320;
    probe.videoHeight = 240;
    probe.fileSizeHuman = "12.3 MB";
    probe.duration = 75.5;
    EXPECT_EQ(factsInWords(probe).toStdString(), "320 × 240 · 00:01:15.50 · 12.3 MB");
    for (const double duration : {0.0, -1.0, 1e300, std::numeric_limits<double>::infinity(),
             std::numeric_limits<double>::quiet_NaN()}) {
        probe.duration = duration;
        EXPECT_EQ(factsInWords(probe).toStdString(), "320 × 240 · 12.3 MB") << duration;
    }
}

TEST_F(VideoDetailsTest, leaveOutASizeOfThePictureThatIsUnknown)
{
    FileProbe probe(folder() + "nothing.mp4", tools().context());
    probe.videoWidth.reset();
    probe.videoHeight.reset();
    probe.duration = 75.5;
    probe.fileSizeHuman = "12.3 MB";
    EXPECT_EQ(factsInWords(probe).toStdString(), "00:01:15.50 · 12.3 MB");
}

} // namespace tarnwell::test
