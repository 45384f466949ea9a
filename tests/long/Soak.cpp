// SPDX-License-Identifier: MIT
// Opens, turns, previews and saves the same small video repeatedly in one window with the real tools, and
// compares the resources of the process at the end with those after the first rounds. tests/long/soak runs
// this program with the variables SOAK_ROUNDS, the number of rounds, and SOAK_FIRST, the round of the first
// measurement.
#include "tests/long/OwnResources.h"
#include "tests/support/Files.h"
#include "tests/support/Samples.h"
#include "tests/support/TimeLimit.h"
#include "tests/support/WindowTest.h"

#include <QAction>
#include <QImage>
#include <QPixmapCache>

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace tarnwell::test
{

namespace
{

// Covers heap fragmentation. A leak of one picture per round is ten times as much.
constexpr std::size_t memoryTolerance = 4096; // kilobytes
constexpr int pixmapCacheLimit = 1024; // kilobytes

constexpr std::chrono::seconds longestRound(120);

int numberSet(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::atoi(value) : 0;
}

void printResources(int round, const OwnResources& held, std::size_t files)
{
    std::cout << "round " << round << ": " << held.descriptors << " descriptors, " << held.threads
              << " threads, " << held.children << " children, " << held.memory << " kB, " << files
              << " temporary files" << std::endl;
}

} // namespace

class Soak : public WindowTest
{
protected:
    std::string sample() const { return folder() + "sample.mp4"; }
    std::string output() const { return folder() + "out.mp4"; }

    /// Alternates between the open panel and a drop.
    void open(int round)
    {
        if (round % 2 == 0)
            openByPanel(sample());
        else
            ASSERT_TRUE(drop(sample()));
        ASSERT_FALSE(isAlertShown());
        waitForKeyboard(window());
        ASSERT_EQ(shownPicture().size(), QSize(320, 240));
    }

    /// Turns or mirrors in one of eight sequences, each of which changes the picture; then resets and turns
    /// left.
    void turn(int round)
    {
        const char* const buttons[]
            = {"rotateLeftBTN", "rotateRightBTN", "flipVerticallyBTN", "flipHorizontallyBTN"};
        const QImage before = shownPicture();
        const int clicks = round % 8 < 4 ? 1 : 3;
        for (int click = 0; click < clicks; ++click)
            action(buttons[(round + click) % 4]).trigger();
        ASSERT_NE(shownPicture(), before);
        action("resetBTN").trigger();
        ASSERT_EQ(shownPicture(), before);
        action("rotateLeftBTN").trigger();
        ASSERT_EQ(shownPicture().size(), QSize(240, 320));
    }

    /// Alternates between both modes.
    void save(int round)
    {
        saveByPanel(output());
        answer(shownAlert(), round % 4 < 2 ? "Transcode" : "Fix Flag");
        AlertDialog* result = shownAlert();
        ASSERT_TRUE(result->text().startsWith(QStringLiteral("Video "))) << result->text().toStdString();
        answer(result, "OK");
        ASSERT_GT(std::filesystem::file_size(output()), 0U);
        std::filesystem::remove(output());
        waitForKeyboard(window());
    }

    std::size_t temporaryFiles() const
    {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(ownTemporaryFolder()))
            count += entry.is_regular_file() ? 1 : 0;
        return count;
    }

    /// Waits until no more threads and descriptors than expected remain from the last run. Returns the
    /// resources.
    OwnResources settled(const OwnResources& expected)
    {
        EXPECT_TRUE(waitUntil([&expected] {
            const OwnResources held = ownResources();
            return held.descriptors <= expected.descriptors && held.threads <= expected.threads;
        }));
        return ownResources();
    }
};

TEST_F(Soak, theProgramHoldsNoMoreAtTheEnd)
{
    const int rounds = numberSet("SOAK_ROUNDS");
    const int first = numberSet("SOAK_FIRST");
    ASSERT_TRUE(first > 0 && rounds > first) << "called by tests/long/soak";
    makeSampleVideo(sample(), {.seconds = 1});
    // Where an icon theme is installed, the buttons of every new panel add pixmaps to Qt's cache up to its
    // limit of 10 MB, which takes longer than the first rounds.
    QPixmapCache::setCacheLimit(pixmapCacheLimit);
    start();
    OwnResources early;
    const std::size_t files = temporaryFiles();
    for (int round = 1; round <= rounds && !HasFatalFailure(); ++round) {
        startTimeLimit(longestRound, "round " + std::to_string(round) + " did not end in time");
        open(round);
        turn(round);
        save(round);
        if (round == first)
            early = ownResources();
        if (round == first || round % 50 == 0)
            printResources(round, ownResources(), temporaryFiles());
    }
    startTimeLimit(longestRound, "the last round did not release its resources in time");
    ASSERT_FALSE(HasFatalFailure());
    const OwnResources late = settled(early);
    printResources(rounds, late, temporaryFiles());
    EXPECT_LE(late.descriptors, early.descriptors);
    EXPECT_LE(late.threads, early.threads);
    EXPECT_EQ(late.children, early.children);
    EXPECT_LE(late.memory, early.memory + memoryTolerance);
    EXPECT_EQ(temporaryFiles(), files);
}

} // namespace tarnwell::test
