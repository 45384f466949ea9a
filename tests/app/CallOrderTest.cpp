// SPDX-License-Identifier: MIT
// Which functions the controller calls, in which order and with what. The linker option --wrap (see
// CMakeLists.txt) redirects the calls of four functions to the functions "wrapped…" below, which call the
// originals under the names "real…".
#include "app/AppDelegate.h"
#include "desktop/InputBlocker.h"
#include "orientation/Picture.h"
#include "platform/Process.h"
#include "probe/FileProbe.h"
#include "tests/support/EventCounter.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/SilentStop.h"

#include <QAction>
#include <QDialog>
#include <QWindow>

#include <filesystem>
#include <functional>
#include <vector>

#define ROTATE_IMAGE "_ZN8tarnwell11rotateImageERK6QImaged"
#define FLIP_IMAGE "_ZN8tarnwell9flipImageERK6QImagebb"
#define PROCESS_LAUNCH "_ZN8tarnwell7Process6launchEv"
#define FILE_PROBE                                                                                           \
    "_ZN8tarnwell9FileProbeC1ERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEERKNS_11ToolContextE"

namespace tarnwell::test
{

QImage realRotateImage(const QImage& source, double angle) __asm__("__real_" ROTATE_IMAGE);
QImage wrappedRotateImage(const QImage& source, double angle) __asm__("__wrap_" ROTATE_IMAGE);
QImage realFlipImage(const QImage& source, bool horizontal, bool vertical) __asm__("__real_" FLIP_IMAGE);
QImage wrappedFlipImage(const QImage& source, bool horizontal, bool vertical) __asm__("__wrap_" FLIP_IMAGE);
std::error_code realLaunch(Process* process) __asm__("__real_" PROCESS_LAUNCH);
std::error_code wrappedLaunch(Process* process) __asm__("__wrap_" PROCESS_LAUNCH);
void realFileProbe(FileProbe* probe, const std::string& path, const ToolContext& tools) __asm__(
    "__real_" FILE_PROBE);
void wrappedFileProbe(FileProbe* probe, const std::string& path, const ToolContext& tools) __asm__(
    "__wrap_" FILE_PROBE);

namespace
{

struct PictureCall {
    QImage source;
    QImage result;
    double angle = 0;
    bool horizontal = false;
    bool vertical = false;
};

std::vector<PictureCall> rotations;
std::vector<PictureCall> flips;
std::function<void()> beforeLaunch; // called on the launching thread
std::function<void(Process&)> afterLaunch; // likewise
std::function<void(FileProbe&)> afterProbe;

} // namespace

QImage wrappedRotateImage(const QImage& source, double angle)
{
    rotations.push_back({.source = source, .result = realRotateImage(source, angle), .angle = angle});
    return rotations.back().result;
}

QImage wrappedFlipImage(const QImage& source, bool horizontal, bool vertical)
{
    flips.push_back({.source = source,
        .result = realFlipImage(source, horizontal, vertical),
        .horizontal = horizontal,
        .vertical = vertical});
    return flips.back().result;
}

std::error_code wrappedLaunch(Process* process)
{
    if (beforeLaunch)
        beforeLaunch();
    const std::error_code error = realLaunch(process);
    if (afterLaunch)
        afterLaunch(*process);
    return error;
}

void wrappedFileProbe(FileProbe* probe, const std::string& path, const ToolContext& tools)
{
    realFileProbe(probe, path, tools);
    if (afterProbe)
        afterProbe(*probe);
}

class CallOrderTest : public FakeToolsTest
{
protected:
    CallOrderTest() { forgetCalls(); }
    ~CallOrderTest() override
    {
        beforeLaunch = {};
        afterLaunch = {};
        afterProbe = {};
        forgetCalls();
    }

    static void forgetCalls()
    {
        rotations.clear();
        flips.clear();
    }

    /// One rotation of currentImage, one flip of its result, and the result of that in the view: three images
    /// that share no pixels.
    void expectOneRefresh(double angle, bool horizontal, bool vertical)
    {
        ASSERT_EQ(rotations.size(), 1U);
        ASSERT_EQ(flips.size(), 1U);
        EXPECT_EQ(rotations[0].angle, angle);
        EXPECT_EQ(flips[0].horizontal, horizontal);
        EXPECT_EQ(flips[0].vertical, vertical);
        EXPECT_NE(rotations[0].result.cacheKey(), rotations[0].source.cacheKey());
        EXPECT_EQ(flips[0].source.cacheKey(), rotations[0].result.cacheKey());
        EXPECT_NE(flips[0].result.cacheKey(), flips[0].source.cacheKey());
        EXPECT_EQ(shownPicture().cacheKey(), flips[0].result.cacheKey());
    }
};

TEST_F(CallOrderTest, everyRefreshRotatesTheStillAndFlipsTheResultOnce)
{
    const std::tuple<const char*, double, bool, bool> cases[] = {
        {"flipVerticallyBTN", 0, false, true},
        {"flipVerticallyBTN", 0, false, false}, // position 1 without mirrors
        {"rotateLeftBTN", 90, false, false},
        {"flipHorizontallyBTN", 90, true, false},
        {"rotateRightBTN", 0, true, false},
        {"rotateRightBTN", 270, true, false},
    };
    start();
    openVideo();
    action("resetBTN").trigger();
    const auto stillKey = shownPicture().cacheKey();
    for (const auto& [name, angle, horizontal, vertical] : cases) {
        SCOPED_TRACE(name);
        forgetCalls();
        action(name).trigger();
        expectOneRefresh(angle, horizontal, vertical);
        EXPECT_EQ(rotations.at(0).source.cacheKey(), stillKey);
    }
}

TEST_F(CallOrderTest, resetShowsTheStillItselfWithoutARefresh)
{
    start();
    openVideo();
    action("rotateLeftBTN").trigger();
    const auto stillKey = rotations.at(0).source.cacheKey();
    forgetCalls();
    action("resetBTN").trigger();
    EXPECT_TRUE(rotations.empty());
    EXPECT_TRUE(flips.empty());
    EXPECT_EQ(shownPicture().cacheKey(), stillKey);
}

TEST_F(CallOrderTest, theAnalysisSheetIsOnTheScreenAndPaintedBeforeTheFirstToolStarts)
{
    start();
    auto& sheet = find<QDialog>("progressWindow");
    EventCounter paints(sheet, QEvent::Paint);
    int launches = 0;
    beforeLaunch = [&] {
        if (++launches > 1)
            return;
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_TRUE(sheet.windowHandle()->isExposed());
        EXPECT_GT(paints.count(), 0);
    };
    openVideo();
    EXPECT_EQ(launches, 3); // one probe, two stills
}

TEST_F(CallOrderTest, savingFromADescriptionWithoutAPathDoesNothing)
{
    start();
    openVideo();
    afterProbe = [](FileProbe& probe) { probe.fileFullPath.reset(); };
    tools().setSniffer(sniffing(errorReport()));
    ASSERT_TRUE(drop(folder() + "clip.mp4"));
    answer(shownAlert(), "OK"); // refused, and the description of the last file nevertheless
    waitForKeyboard(window());
    int launches = 0;
    beforeLaunch = [&] { ++launches; };
    saveByPanel(folder() + "out.mp4");
    ASSERT_TRUE(waitUntil([this] { return window().isActiveWindow(); }));
    EXPECT_FALSE(isAlertShown());
    EXPECT_FALSE(isProgressShown());
    EXPECT_FALSE(InputBlocker::isActive()); // no export has begun
    EXPECT_EQ(launches, 0);
}

// In most rounds the encoder ends before it handles SIGTERM.
TEST_F(CallOrderTest, aSigtermRightAfterTheLaunchKeepsAnOlderFile)
{
    start();
    openVideo();
    tools().useRealCreator();
    const std::string olderVideo = reportOf({});
    for (int round = 0; round < 10 && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const std::string saved = folder() + "saved" + std::to_string(round) + "/";
        std::filesystem::create_directory(saved);
        writeFile(saved + "out.mp4", olderVideo);
        tools().setSniffer("print-file " + saved + "out.mp4\n"); // no report for a missing file
        afterLaunch = [launches = 0](Process& process) mutable {
            if (++launches == 1) // the second one is the probe of the output
                process.terminate();
        };
        delegate().startCreatorRun(saved + "out.mp4",
            {"-i", folder() + "clip.mp4", "-pix_fmt", "yuv420p", "-metadata:s:v", "rotate=0", "-y",
                saved + "out.mp4"});
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(namesIn(saved), std::vector<std::string>({"out.mp4"}));
        EXPECT_EQ(contentsOf(saved + "out.mp4"), olderVideo);
        EXPECT_EQ(alert->text(), QStringLiteral("Seems like something went wrong!"));
        answer(alert, "OK");
    }
}

class CallOrderDeathTest : public CallOrderTest
{
};

TEST_F(CallOrderDeathTest, aCancelBeforeTheFirstEncoderIsLaunchedFindsNoProcess)
{
    EXPECT_SILENT_STOP([&] {
        start();
        std::promise<void> launching;
        std::promise<void> never;
        beforeLaunch = [&] {
            launching.set_value();
            never.get_future().wait();
        };
        delegate().startCreatorRun(folder() + "out.mp4", {folder() + "out.mp4"});
        launching.get_future().wait();
        delegate().closeBTNInsideProgressWindowClicked();
    }());
}

} // namespace tarnwell::test
