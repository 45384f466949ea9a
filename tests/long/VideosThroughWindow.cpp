// SPDX-License-Identifier: MIT
// Opens one file after the other in the real window, with the real tools, and with VIDEOS_SAVE=1 saves each
// of at most ten seconds in every way that the program offers. tests/long/videos-through-window calls it:
// VIDEOS_LIST holds the files' paths, each ended by a zero byte; VIDEOS_OUTCOMES gets a line "begin PATH"
// before each file and "end OUTCOME" after it, so that whoever starts it again knows which file it died of.
#include "probe/FileProbe.h"
#include "tests/long/OwnResources.h"
#include "tests/support/Files.h"
#include "tests/support/TimeLimit.h"
#include "tests/support/WindowTest.h"

#include <QAction>
#include <QImage>
#include <QTest>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <utility>

namespace tarnwell::test
{

namespace
{

constexpr std::chrono::seconds longestOpening(60);
constexpr std::chrono::seconds longestSaving(600);
constexpr double longestToSave = 10;

std::string setting(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string oneLine(const QString& text)
{
    std::string line = text.toStdString();
    for (char& letter : line)
        letter = letter == '\n' || letter == '\t' ? ' ' : letter;
    return line;
}

} // namespace

class VideosThroughWindow : public WindowTest
{
protected:
    void tell(const std::string& line) { m_outcomes << line << std::endl; }

    /// What the window shows of the file after it was dropped: "picture WxH", "alert TEXT" or "refused".
    std::string open(const std::string& path)
    {
        if (!drop(path))
            return "refused";
        if (isAlertShown()) {
            const std::string text = oneLine(shownAlert()->text());
            answer(shownAlert(), "OK");
            waitForKeyboard(window());
            return "alert " + text;
        }
        const QImage picture = shownPicture();
        return "picture " + std::to_string(picture.width()) + "x" + std::to_string(picture.height());
    }

    /// Turns and saves what is open, in the mode of that name where the program asks for one. What came of
    /// it.
    std::string save(const char* mode)
    {
        m_wasAsked = false;
        waitForKeyboard(window());
        action("rotateRightBTN").trigger();
        saveByPanel(output());
        if (waitForAlert()->text().endsWith(QStringLiteral("Available!"))) {
            m_wasAsked = true;
            answer(shownAlert(), mode);
        }
        const std::string text = oneLine(waitForAlert()->text());
        answer(shownAlert(), "OK");
        if (!exists(output()))
            return text + " (no file)";
        const std::string size = std::to_string(std::filesystem::file_size(output()));
        std::filesystem::remove(output());
        return text + (text.starts_with("Video") ? " (" : " (LEFT OVER: ") + size + " bytes)";
    }

    /// Waits as long as the time limit of the process allows, which is longer than that of other waits.
    AlertDialog* waitForAlert()
    {
        while (!isAlertShown())
            QTest::qWait(10);
        return shownAlert();
    }

    std::string saveInEveryWay()
    {
        std::string outcome = "; transcode: " + save("Transcode");
        if (m_wasAsked)
            outcome += "; fix flag: " + save("Fix Flag");
        return outcome;
    }

    std::string leftovers()
    {
        std::string left;
        for (const auto& name : namesIn(ownTemporaryFolder())) {
            // The folder of the stills stays until the program ends.
            const std::string path = ownTemporaryFolder() + "/" + name + "/";
            if (path != folder() && !namesIn(path).empty())
                left += " " + name;
        }
        for (const auto& name : namesIn(folder()))
            left += " " + name;
        // The thread that reads an encoder's status lines may need a moment more to end.
        if (!waitUntil([this] { return ownResources().descriptors <= m_normal.descriptors; }))
            left += " descriptors";
        if (ownResources().children > m_normal.children)
            left += " processes";
        m_normal = left.empty() ? m_normal : ownResources(); // so that each is told once
        return left.empty() ? "" : "; LEFT OVER:" + left;
    }

    /// What the program takes when it does a thing for the first time, such as showing an alert, it may keep.
    void takeAsNormal(const std::string& kind)
    {
        if (m_kindsSeen.insert(kind).second)
            m_normal = ownResources();
    }

    std::string output() const { return folder() + "out.mp4"; }

    std::string outcomeOf(const std::string& path)
    {
        const std::string original = contentsOf(path);
        startTimeLimit(longestOpening, "the file was not opened in time");
        std::string outcome = open(path);
        takeAsNormal(outcome.substr(0, outcome.find(' ')));
        if (outcome.starts_with("picture") && isSaving()
            && FileProbe(path, realTools()).duration <= longestToSave) {
            startTimeLimit(longestSaving, "the file was not saved in time");
            outcome += saveInEveryWay();
            takeAsNormal("saved");
        }
        stopTimeLimit();
        return outcome + (contentsOf(path) == original ? "" : "; ORIGINAL CHANGED") + leftovers();
    }

    static bool isSaving() { return setting("VIDEOS_SAVE") == "1"; }

private:
    std::ofstream m_outcomes{setting("VIDEOS_OUTCOMES"), std::ios::app};
    OwnResources m_normal;
    std::set<std::string> m_kindsSeen;
    bool m_wasAsked = false;
};

TEST_F(VideosThroughWindow, oneAfterTheOther)
{
    ASSERT_FALSE(setting("VIDEOS_LIST").empty()) << "called by tests/long/videos-through-window";
    start();
    std::istringstream list(contentsOf(setting("VIDEOS_LIST")));
    for (std::string path; std::getline(list, path, '\0');) {
        tell("begin " + path);
        tell("end " + outcomeOf(path));
        ASSERT_FALSE(HasFailure())
            << path; // the window may be in any state; a new one goes on after this file
    }
}

} // namespace tarnwell::test
