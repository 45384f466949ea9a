// SPDX-License-Identifier: MIT
// The file panels of GTK 3 in the built program, operated with the keyboard.
#include "tests/desktop/ProgramWithVideo.h"
#include "tests/support/EnvironmentValue.h"
#include "tests/support/Files.h"
#include "tests/support/Waiting.h"
#include "tests/support/XWindows.h"

#include <gtest/gtest.h>

namespace tarnwell::test
{

class GtkPanelTest : public testing::Test
{
protected:
    std::string folder() const { return m_video.folder(); }
    std::string file(const std::string& name) const { return m_video.file(name); }

    void open()
    {
        m_program.waitForWindow("Tarnwell");
        m_program.keysUntilWindow("ctrl+o", "Open Video");
        waitForPanel("Open Video");
        m_program.chooseInPanel("Open Video", file("clip.mp4"));
        m_program.waitForWindow("clip.mp4 — Tarnwell");
    }

    void beginSave()
    {
        m_program.keysUntilWindow("ctrl+s", "Save Video");
        waitForPanel("Save Video");
    }

    /// Waits until GTK's panel has the keyboard focus.
    void waitForPanel(const std::string& title)
    {
        m_program.waitForWindow(title);
        waitFor("GTK's panel “" + title + "”", [] { return isPanelActive(); });
    }

    /// Waits until a message or a question of the program has the keyboard focus. It has the title of the
    /// panel.
    void waitForMessage()
    {
        waitFor("the end of GTK's panel", [] { return !isPanelActive(); });
        m_program.waitForWindow("Save Video");
        EXPECT_FALSE(isPanelActive());
    }

    void waitForResult(const std::string& name)
    {
        m_video.waitForResult(name);
        m_program.waitForWindow("Saving Video"); // the progress or the result
    }

    /// Keys for the window with the keyboard focus.
    void keys(const std::string& keys) { m_program.keys(keys); }
    void text(const std::string& text) { m_program.text(text); }
    void waitForMainWindow() { m_program.waitForWindow("clip.mp4 — Tarnwell"); }

private:
    static bool isPanelActive() { return roleOf(activeWindow()).find("GtkFileChooserDialog") == 0; }

    EnvironmentValue m_theme{"QT_QPA_PLATFORMTHEME", "gtk3"};
    ProgramWithVideo m_video;
    ExternalProgram& m_program = m_video.program();
};

TEST_F(GtkPanelTest, anEarlierResultIsReplacedOnlyAfterYes)
{
    writeFile(file("Processed.mp4"), "earlier result");
    open();
    beginSave();
    keys("Return");
    waitForMessage();
    EXPECT_EQ(contentsOf(file("Processed.mp4")), "earlier result");
    keys("alt+y");
    waitForResult("Processed.mp4");
}

TEST_F(GtkPanelTest, aTypedNameWithItsExtensionIsAskedAboutOnce)
{
    writeFile(file("Other.mp4"), "earlier result");
    open();
    beginSave();
    keys("ctrl+a");
    text("Other.mp4");
    keys("Return");
    waitForMessage();
    keys("alt+y");
    waitForResult("Other.mp4");
}

TEST_F(GtkPanelTest, afterANoThePanelHasTheKeyboardAndTheNameIsSelected)
{
    writeFile(file("Processed.mp4"), "earlier result");
    open();
    beginSave();
    keys("Return");
    waitForMessage();
    keys("Return"); // No is the default
    waitForPanel("Save Video");
    text("Other");
    keys("Return");
    waitForResult("Other.mp4");
    EXPECT_EQ(contentsOf(file("Processed.mp4")), "earlier result");
}

TEST_F(GtkPanelTest, afterACancelTheWindowHasTheKeyboardAndTheNextSaveAddsTheExtension)
{
    open();
    beginSave();
    keys("Escape");
    waitForMainWindow();
    EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"clip.mp4"});
    keys("ctrl+o");
    waitForPanel("Open Video");
    keys("Escape");
    waitForMainWindow();
    beginSave();
    keys("Return");
    waitForResult("Processed.mp4");
}

TEST_F(GtkPanelTest, aFileThatAppearsWhileThePanelIsShownIsAskedAbout)
{
    open();
    beginSave();
    writeFile(file("Processed.mp4"), "another program's");
    keys("Return");
    waitForMessage();
    EXPECT_EQ(contentsOf(file("Processed.mp4")), "another program's");
}

} // namespace tarnwell::test
