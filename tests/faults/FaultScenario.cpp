// SPDX-License-Identifier: MIT
// Opens a video, turns it and saves it through the window while one system call fails; see failingCalls.cpp.
// Prints the outcome on standard error: "picture" if the video was opened, the text of each alert, and
// "clean" or "WRONG".
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QAction>

#include <dlfcn.h>
#include <iostream>

namespace tarnwell::test
{

namespace
{

const std::string videoBytes = "the only copy";

void countCalls(bool count)
{
    using Function = void (*)(bool);
    const auto function = reinterpret_cast<Function>(::dlsym(RTLD_DEFAULT, "countFailingCalls"));
    if (function != nullptr)
        function(count);
}

void printOutcome(const std::string& line)
{
    std::cerr << "OUTCOME " << line << std::endl;
}

std::string children()
{
    std::string all;
    for (const auto& thread : namesIn("/proc/self/task"))
        all += contentsOf("/proc/self/task/" + thread + "/children");
    return all;
}

} // namespace

class FaultScenario : public FakeToolsTest
{
protected:
    /// Presses the button of the shown alert. Returns the first line of the alert's text.
    std::string answerAlert(const char* button)
    {
        countCalls(false);
        AlertDialog* alert = shownAlert();
        const std::string text = alert->text().toStdString();
        countCalls(true);
        answer(alert, button);
        countCalls(false);
        return text.substr(0, text.find('\n'));
    }

    bool openClip()
    {
        countCalls(true);
        drop(folder() + "clip.mp4");
        countCalls(false);
        if (isAlertShown()) {
            printOutcome(answerAlert("OK"));
            return false;
        }
        const bool isOpen = action("rotateLeftBTN").isEnabled();
        printOutcome(isOpen ? "picture" : "nothing");
        return isOpen;
    }

    void saveClip()
    {
        action("rotateRightBTN").trigger();
        waitForKeyboard(window());
        type(QKeySequence(QStringLiteral("Ctrl+S")));
        PathPanel* panel = shownPanel();
        countCalls(true);
        choose(panel, folder() + "out.mp4");
        countCalls(false);
        ASSERT_TRUE(waitUntil([this] { return isAlertShown(); }));
        countCalls(true);
        AlertDialog* question = shownAlert();
        if (question->buttons().size() == 1) { // the input could not be compared with the opened file
            printOutcome(answerAlert("OK"));
            return;
        }
        answer(question, "Transcode");
        ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
        printOutcome(answerAlert("OK"));
    }

    void expectNothingLeftOver()
    {
        EXPECT_EQ(contentsOf(folder() + "clip.mp4"), videoBytes);
        EXPECT_TRUE(waitUntil([] { return children().empty(); }));
        EXPECT_FALSE(isProgressShown());
        // If a removal fails, the file stays and the program continues.
        if (qEnvironmentVariable("TARNWELL_FAILS").startsWith(QStringLiteral("remove")))
            return;
        for (const auto& name : namesIn(ownTemporaryFolder())) {
            const std::string path = ownTemporaryFolder() + "/" + name + "/";
            // The folder of the stills stays until the program ends.
            EXPECT_TRUE(path == folder() || path == tools().folder() || namesIn(path).empty())
                << "left over: " << path;
        }
    }
};

TEST_F(FaultScenario, endsInAnAlertOrDoesTheJob)
{
    writeFile(folder() + "clip.mp4", videoBytes);
    start();
    tools().setCreator("with -frames:v copy " + folder()
        + "still.jpg\nwithout -frames:v error time=00:00:02.00\\n\n" + "without -frames:v copy " + folder()
        + "still.jpg\n");
    if (openClip())
        saveClip();
    expectNothingLeftOver();
    // The next video opens normally.
    EXPECT_TRUE(drop(folder() + "clip.mp4"));
    if (isAlertShown())
        answerAlert("OK");
    EXPECT_TRUE(action("rotateLeftBTN").isEnabled());
    printOutcome(HasFailure() ? "WRONG" : "clean");
}

} // namespace tarnwell::test
