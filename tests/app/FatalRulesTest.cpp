// SPDX-License-Identifier: MIT
// If a required object is missing, the program ends at once by a signal and prints nothing about it.
#include "app/AppDelegate.h"
#include "app/DragAndDropFileInNSImageView.h"
#include "desktop/Alert.h"
#include "probe/FileProbe.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/SilentStop.h"

#include <QAction>

#include <any>

namespace tarnwell::test
{

namespace
{

/// The output of an export before its encoder is started.
const char* const plannedExport
    = "^positionState : 1, vFlipSte : true, hFlipState : false\n\\[\"-i\", [^\n]*\\]\n$";

} // namespace

class FatalRulesDeathTest : public FakeToolsTest
{
protected:
    void openClip()
    {
        start();
        writeFile(folder() + "clip.mp4", "bytes");
        drop(folder() + "clip.mp4");
    }

    /// Saves and processes events until the program stops.
    void saveAndWait(const std::string& creatorScript)
    {
        tools().setCreator(
            stillScript() + creatorScript); // an output file prevents the message about a missing one
        saveWithoutMode();
    }

    void saveWithoutMode()
    {
        action("flipVerticallyBTN").trigger(); // one mirror: no choice of a mode
        saveByPanel(folder() + "out.mp4");
        runUntilStop();
    }

    /// An existing file: its description prints no message.
    std::string anyFile() const { return folder() + "still.jpg"; }

    /// Runs the encoder without any plan.
    void runCreator() { delegate().startCreatorRun(folder() + "out.mp4", {folder() + "out.mp4"}); }

    void post(std::map<std::string, std::any> userInfo)
    {
        start();
        NotificationCenter::defaultCenter().post({fileDroppedNotification, nullptr, std::move(userInfo)});
    }
};

TEST_F(FatalRulesDeathTest, savingBeforeAnyFileWasAnalysedStopsTheProgram)
{
    EXPECT_SILENT_STOP((start(), saveByPanel(folder() + "out.mp4")));
}

TEST_F(FatalRulesDeathTest, aProbeToolThatIsMissingStopsTheProgram)
{
    tools().removeSniffer();
    EXPECT_SILENT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, aStillThatIsNoPictureStopsTheProgram)
{
    writeFile(folder() + "still.jpg", "not a picture");
    EXPECT_SILENT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, anEncoderThatLeavesNoStillStopsTheProgram)
{
    tools().setCreator("exit 0\n");
    EXPECT_SILENT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, anEncoderThatCannotBeStartedForAStillStopsTheProgram)
{
    tools().makeCreatorUnstartable();
    EXPECT_SILENT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, neitherAnEncoderNorAFallbackPictureStopsTheProgram)
{
    tools().removeCreator();
    EXPECT_SILENT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, channelsThatAreNoNumberStopTheProgram)
{
    tools().setSniffer(sniffing(R"({"streams": [{"codec_type": "audio", "channels": "2"}]})"));
    EXPECT_SILENT_STOP(openClip());
}

TEST_F(FatalRulesDeathTest, anEncoderThatIsMissingAtAnExportStopsTheProgram)
{
    EXPECT_STOP_AFTER((openClip(), tools().removeCreator(), saveWithoutMode()), plannedExport);
}

TEST_F(FatalRulesDeathTest, aStatusLineWithoutATimeStampStopsTheProgram)
{
    EXPECT_STOP_AFTER((openClip(), saveAndWait("error frame=0 time=N/A\n")), plannedExport);
}

TEST_F(FatalRulesDeathTest, aTimeStampWithoutADotStopsTheProgram)
{
    EXPECT_STOP_AFTER((openClip(), saveAndWait("error time=00:00:01:50\n")), plannedExport);
}

TEST_F(FatalRulesDeathTest, cancellingWithoutAnEncoderStopsTheProgram)
{
    EXPECT_SILENT_STOP((start(), delegate().closeBTNInsideProgressWindowClicked()));
}

TEST_F(FatalRulesDeathTest, aResultWithoutARunStopsTheProgram)
{
    EXPECT_SILENT_STOP((start(),
        delegate().showResultAlert(std::make_shared<const FileProbe>(anyFile(), tools().context()))));
}

TEST_F(FatalRulesDeathTest, choosingAModeWithoutAFileStopsTheProgram)
{
    EXPECT_STOP_AFTER((start(), delegate().chooseExportMode("/in", "/out")),
        "^positionState : 1, vFlipSte : false, hFlipState : false\n$");
}

TEST_F(FatalRulesDeathTest, aRefreshWithoutAStillStopsTheProgram)
{
    EXPECT_SILENT_STOP((start(), delegate().updatePreview()));
}

TEST_F(FatalRulesDeathTest, aDropNotificationWithoutItsEntryStopsTheProgram)
{
    EXPECT_SILENT_STOP(post({}));
}

TEST_F(FatalRulesDeathTest, aDropNotificationWithAnotherValueStopsTheProgram)
{
    EXPECT_SILENT_STOP(post({{fileDroppedKey, std::string("/clip.mp4")}}));
}

TEST_F(FatalRulesDeathTest, aFlagToRewriteWithoutAFileStopsTheProgram)
{
    EXPECT_SILENT_STOP((start(), delegate().exportModeChosen(Alert::firstButtonResponse, "/in", "/out")));
}

TEST_F(FatalRulesDeathTest, progressWithoutAFileStopsTheProgram)
{
    tools().setCreator(stillScript() + "error time=00:00:01.00\n");
    EXPECT_SILENT_STOP((start(), runCreator(), runUntilStop()));
}

TEST_F(FatalRulesDeathTest, aCancelledResultWithoutAPathStopsTheProgram)
{
    EXPECT_SILENT_STOP([&] {
        start();
        runCreator();
        shownAlert();
        delegate().closeBTNInsideProgressWindowClicked();
        const auto probe = std::make_shared<FileProbe>(anyFile(), tools().context());
        probe->fileFullPath.reset();
        delegate().showResultAlert(probe);
    }());
}

TEST_F(FatalRulesDeathTest, anOutputWithoutAnAddressCannotBeShown)
{
    EXPECT_SILENT_STOP([&] {
        start();
        FileProbe probe(anyFile(), tools().context());
        probe.fileFullURL.reset();
        delegate().resultAlertButtonClicked(Alert::secondButtonResponse, probe);
    }());
}

TEST_F(FatalRulesDeathTest, anOutputWithoutAPathCannotBeLaunched)
{
    EXPECT_SILENT_STOP([&] {
        start();
        FileProbe probe(anyFile(), tools().context());
        probe.fileFullPath.reset();
        delegate().resultAlertButtonClicked(Alert::thirdButtonResponse, probe);
    }());
}

} // namespace tarnwell::test
