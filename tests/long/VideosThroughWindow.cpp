// SPDX-License-Identifier: MIT
// Opens files one after the other in the real window with the real tools. With VIDEOS_SAVE=1 it also saves
// each video of at most ten seconds in every available mode. tests/long/videos-through-window runs this
// program. VIDEOS_LIST names a file with null-terminated paths. The program appends a line "begin PATH"
// before each file and a line "end OUTCOME" after it to the file VIDEOS_OUTCOMES, so that the script knows
// which file made the program stop.
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
    void writeLine(const std::string& line) { m_outcomes << line << std::endl; }

    /// Drops the file on the window. Returns the result: "picture WxH", "alert TEXT" or "refused".
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

    /// Turns and saves the open video, in that mode if the program asks for one. Returns the result alert's
    /// text and the size of the output.
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

    /// Waits without a limit of its own: an export can take longer than other waits, and the process has a
    /// time limit.
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
            // The program keeps the folder of the still until it ends.
            const std::string path = ownTemporaryFolder() + "/" + name + "/";
            if (path != folder() && !namesIn(path).empty())
                left += " " + name;
        }
        for (const auto& name : namesIn(folder()))
            left += " " + name;
        // The thread that reads the encoder's status lines may end later.
        if (!waitUntil([this] { return ownResources().descriptors <= m_baseline.descriptors; }))
            left += " descriptors";
        if (ownResources().children > m_baseline.children)
            left += " processes";
        m_baseline = left.empty() ? m_baseline : ownResources(); // reports each leftover once
        return left.empty() ? "" : "; LEFT OVER:" + left;
    }

    /// After the first result of a kind, takes the present resources as the baseline: the first alert, for
    /// example, allocates resources that the program keeps.
    void updateBaseline(const std::string& kind)
    {
        if (m_kindsSeen.insert(kind).second)
            m_baseline = ownResources();
    }

    std::string output() const { return folder() + "out.mp4"; }

    std::string outcomeOf(const std::string& path)
    {
        const std::string original = contentsOf(path);
        startTimeLimit(longestOpening, "the file was not opened in time");
        std::string outcome = open(path);
        updateBaseline(outcome.substr(0, outcome.find(' ')));
        if (outcome.starts_with("picture") && isSaving()
            && FileProbe(path, realTools()).duration <= longestToSave) {
            startTimeLimit(longestSaving, "the file was not saved in time");
            outcome += saveInEveryWay();
            updateBaseline("saved");
        }
        stopTimeLimit();
        return outcome + (contentsOf(path) == original ? "" : "; ORIGINAL CHANGED") + leftovers();
    }

    static bool isSaving() { return setting("VIDEOS_SAVE") == "1"; }

private:
    std::ofstream m_outcomes{setting("VIDEOS_OUTCOMES"), std::ios::app};
    OwnResources m_baseline;
    std::set<std::string> m_kindsSeen;
    bool m_wasAsked = false;
};

TEST_F(VideosThroughWindow, oneAfterTheOther)
{
    ASSERT_FALSE(setting("VIDEOS_LIST").empty()) << "called by tests/long/videos-through-window";
    start();
    std::istringstream list(contentsOf(setting("VIDEOS_LIST")));
    for (std::string path; std::getline(list, path, '\0');) {
        writeLine("begin " + path);
        writeLine("end " + outcomeOf(path));
        ASSERT_FALSE(HasFailure()) << path; // the script continues with the next file in a new process
    }
}

} // namespace tarnwell::test
