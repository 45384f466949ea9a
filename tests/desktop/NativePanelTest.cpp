// SPDX-License-Identifier: MIT
// The panels of the built program where the desktop shows dialogs of its own. A fake portal stands for the
// desktop: to Qt its dialogs are native ones like others.
#include "tests/desktop/FakePortal.h"
#include "tests/desktop/ProgramWithVideo.h"
#include "tests/support/EnvironmentValue.h"
#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <gtest/gtest.h>

namespace tarnwell::test
{

class NativePanelTest : public testing::Test
{
protected:
    std::string folder() const { return m_video.folder(); }

    /// Opens the sample and shows the save panel.
    void openAndBeginSave()
    {
        m_program.waitForWindow("Tarnwell");
        m_program.keys("ctrl+o");
        m_portal.waitForRequests(1);
        m_portal.answer(folder() + "/clip.mp4");
        m_program.waitForWindow("Tarnwell");
        waitFor("the save panel", [this] {
            m_program.keys("ctrl+s"); // does nothing during the analysis and while the panel is shown
            return m_portal.requestCount() == 2;
        });
    }

    void waitForResult(const std::string& name) { m_video.waitForResult(name); }

    FakePortal m_portal;

private:
    EnvironmentValue m_theme{"QT_QPA_PLATFORMTHEME", "xdgdesktopportal"};
    ProgramWithVideo m_video;

protected:
    ExternalProgram& m_program = m_video.program();
};

TEST_F(NativePanelTest, theSavePanelStartsInTheFolderOfTheVideoAndTheExtensionIsAdded)
{
    openAndBeginSave();
    EXPECT_EQ(m_portal.option("current_folder"), folder());
    EXPECT_EQ(m_portal.option("current_name"), "Processed");
    m_portal.answer(folder() + "/Clip");
    waitForResult("Clip.mp4");
}

TEST_F(NativePanelTest, aFileWhoseNameTheDialogDidNotShowIsReplacedOnlyAfterYes)
{
    writeFile(folder() + "/Clip.mp4", "earlier result");
    openAndBeginSave();
    m_portal.answer(folder() + "/Clip");
    m_program.waitForWindow("Save Video");
    EXPECT_EQ(contentsOf(folder() + "/Clip.mp4"), "earlier result");
    m_program.keys("alt+y");
    waitForResult("Clip.mp4");
}

TEST_F(NativePanelTest, aNoShowsThePanelAgainWithTheChosenName)
{
    writeFile(folder() + "/Clip.mp4", "earlier result");
    openAndBeginSave();
    m_portal.answer(folder() + "/Clip");
    m_program.waitForWindow("Save Video");
    m_program.keys("Return");
    m_portal.waitForRequests(3);
    EXPECT_EQ(m_portal.option("current_name"), "Clip");
    EXPECT_EQ(m_portal.option("current_folder"), folder());
    m_portal.answer(folder() + "/Other");
    waitForResult("Other.mp4");
    EXPECT_EQ(contentsOf(folder() + "/Clip.mp4"), "earlier result");
}

TEST_F(NativePanelTest, thePortalsOwnQuestionIsNotRepeated)
{
    writeFile(folder() + "/Clip.mp4", "earlier result");
    openAndBeginSave();
    m_portal.answer(folder() + "/Clip.mp4");
    waitForResult("Clip.mp4");
}

TEST_F(NativePanelTest, aMissingFolderIsReportedAndThePanelShownAgain)
{
    openAndBeginSave();
    m_portal.answer(folder() + "/missing/Clip.mp4");
    m_program.waitForWindow("Save Video");
    m_program.keys("Return");
    m_portal.waitForRequests(3);
    m_portal.answer("");
    m_program.waitForWindow("Tarnwell");
}

TEST(SandboxedPanelTest, thePortalChoosesTheFolder)
{
    FakePortal portal;
    const EnvironmentValue theme("QT_QPA_PLATFORMTHEME", "xdgdesktopportal");
    const ExternalProgram program(TARNWELL_BUILD_FOLDER "/tests/sandboxedSave");
    portal.waitForRequests(1);
    EXPECT_FALSE(portal.hasOption("current_folder")) << portal.option("current_folder");
    EXPECT_FALSE(portal.hasOption("current_file")) << portal.option("current_file");
    EXPECT_EQ(portal.option("current_name"), "Rotated.mp4");
}

} // namespace tarnwell::test
