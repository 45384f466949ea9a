// SPDX-License-Identifier: MIT
// Where something required is missing the program ends at once, by a signal, and prints nothing.
#include "app/AppDelegate.h"
#include "app/DragAndDropFileInNSImageView.h"
#include "platform/DispatchQueue.h"
#include "probe/FileProbe.h"
#include "tests/support/Files.h"
#include "tests/support/StandInTest.h"

#include <QAction>

#include <any>

namespace tarnwell::test
{

class FatalRulesDeathTest : public StandInTest
{
protected:
    void openClip()
    {
        start();
        writeFile(folder() + "clip.mp4", "bytes");
        drop(folder() + "clip.mp4");
    }

    /// Saves and goes on until the program ends. The encoder itself ends at once: one that outlived the
    /// program would hold on to the pipe through which its death is noticed.
    void saveAndWait(const std::string& creatorScript)
    {
        tools().setCreator(creatorScript);
        saveWithoutMode();
    }

    void saveWithoutMode()
    {
        action("flipVerticallyBTN").trigger(); // one mirror: no choice of a mode
        saveByPanel(folder() + "out.mp4");
        waitUntil([] { return false; });
    }

    void post(std::map<std::string, std::any> userInfo)
    {
        start();
        NotificationCenter::defaultCenter().post({fileDroppedNotification, nullptr, std::move(userInfo)});
    }
};

#define EXPECT_STOP(statement) EXPECT_EXIT(statement, testing::KilledBySignal(SIGABRT), "^$")

TEST_F(FatalRulesDeathTest, savingBeforeAnyFileWasAnalysedStopsTheProgram)
{
    EXPECT_STOP((start(), saveByPanel(folder() + "out.mp4")));
}

TEST_F(FatalRulesDeathTest, aProbeToolThatIsMissingStopsTheProgram)
{
    tools().removeSniffer();
    EXPECT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, aStillThatIsNoPictureStopsTheProgram)
{
    writeFile(folder() + "still.png", "not a picture");
    EXPECT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, anEncoderThatLeavesNoStillStopsTheProgram)
{
    tools().setCreator("exit 0\n");
    EXPECT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, anEncoderThatCannotBeStartedForAStillStopsTheProgram)
{
    tools().makeCreatorUnstartable();
    EXPECT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, neitherAnEncoderNorAStandInPictureStopsTheProgram)
{
    tools().removeCreator();
    EXPECT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, channelsThatAreNoNumberStopTheProgram)
{
    tools().setSniffer(sniffing(R"({"streams": [{"codec_type": "audio", "channels": "2"}]})"));
    EXPECT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, anEncoderThatIsMissingAtAnExportStopsTheProgram)
{
    EXPECT_STOP((openClip(), tools().removeCreator(), saveWithoutMode()));
}

TEST_F(FatalRulesDeathTest, aStatusLineWithoutATimeStampStopsTheProgram)
{
    EXPECT_STOP((openClip(), saveAndWait("error frame=0 time=N/A\n")));
}

TEST_F(FatalRulesDeathTest, aTimeStampWithoutADotStopsTheProgram)
{
    EXPECT_STOP((openClip(), saveAndWait("error time=00:00:01:50\n")));
}

TEST_F(FatalRulesDeathTest, cancellingWithoutAnEncoderStopsTheProgram)
{
    EXPECT_STOP((start(), delegate().closeBTNInsideProgressWindowClicked()));
}

TEST_F(FatalRulesDeathTest, aResultWithoutARunStopsTheProgram)
{
    EXPECT_STOP(
        (start(), delegate().showResultAlert(std::make_shared<const FileProbe>("/out", tools().context()))));
}

TEST_F(FatalRulesDeathTest, choosingAModeWithoutAFileStopsTheProgram)
{
    EXPECT_STOP((start(), delegate().chooseExportMode("/in", "/out")));
}

TEST_F(FatalRulesDeathTest, aRefreshWithoutAStillStopsTheProgram)
{
    EXPECT_STOP((start(), delegate().updatePreview()));
}

TEST_F(FatalRulesDeathTest, aDropNotificationWithoutItsEntryStopsTheProgram)
{
    EXPECT_STOP(post({}));
}

TEST_F(FatalRulesDeathTest, aDropNotificationWithAnotherValueStopsTheProgram)
{
    EXPECT_STOP(post({{fileDroppedKey, std::string("/clip.mp4")}}));
}

TEST_F(FatalRulesDeathTest, anOutletThatIsNotConnectedStopsTheProgram)
{
    using Entry = void (AppDelegate::*)();
    const Entry entries[] = {&AppDelegate::applicationDidFinishLaunching, &AppDelegate::helpBTNClicked,
        &AppDelegate::okBTNInsideHelpWindowClicked, &AppDelegate::openMenuBTNClicked,
        &AppDelegate::resetBTNClicked, &AppDelegate::updatePreview, &AppDelegate::saveMenuBTNClicked};
    for (const Entry entry : entries) {
        EXPECT_STOP({
            AppDelegate lonely({}, tools().context(), std::make_shared<DispatchQueue>([] {}));
            (lonely.*entry)();
        });
    }
}

} // namespace tarnwell::test
