// SPDX-License-Identifier: MIT
// The built program leaves the user's folders as they are and reads no setting from them.
#include "tests/support/EnvironmentValue.h"
#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr const char* userFolders[]
    = {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"};

/// Sets the working directory for its lifetime.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const std::string& path) { std::filesystem::current_path(path); }
    ~WorkingDirectory() { std::filesystem::current_path(m_earlier); }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    std::filesystem::path m_earlier = std::filesystem::current_path();
};

/// Whether another process or this one has opened the file since the watch was created.
class OpenWatch
{
public:
    explicit OpenWatch(const std::string& path)
        : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        EXPECT_GE(::inotify_add_watch(m_descriptor, path.c_str(), IN_OPEN), 0);
    }
    ~OpenWatch() { ::close(m_descriptor); }
    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    bool wasOpened() const
    {
        inotify_event event = {};
        return ::read(m_descriptor, &event, sizeof event) > 0;
    }

private:
    int m_descriptor;
};

/// The contents of every file below the folder, and "folder" for every folder, by path.
std::map<std::string, std::string> treeOf(const std::string& folder)
{
    std::map<std::string, std::string> tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        tree[entry.path().string()] = entry.is_directory() ? "folder" : contentsOf(entry.path().string());
    return tree;
}

} // namespace

class PersistenceTest : public testing::Test
{
protected:
    PersistenceTest()
    {
        for (const char* name : userFolders) {
            std::filesystem::create_directories(user() + name + "/deeper");
            writeFile(user() + name + "/deeper/note", std::string("of ") + name);
            m_variables.push_back(std::make_unique<EnvironmentValue>(name, user() + name));
        }
        std::filesystem::create_directory(working());
        std::filesystem::create_directory(videos());
        std::filesystem::create_directory(earlier());
        writeFile(earlier() + "clip.mp4", "the panel must not start here");
        writeFile(settings(),
            "[FileDialog]\nhistory=file://" + earlier() + "\nlastVisited=file://" + earlier()
                + "\nshortcuts=file:///\nsidebarWidth=90\nviewMode=List\n");
        writeFile(user() + "XDG_CONFIG_HOME/user-dirs.dirs", "XDG_VIDEOS_DIR=\"" + videos() + "\"\n");
        makeSampleVideo(videos() + "/clip.mp4", {.codec = "mpeg4"}); // no choice of a mode
    }

    std::string user() const { return m_folder.path() + "user/"; }
    std::string settings() const { return user() + "XDG_CONFIG_HOME/QtProject.conf"; }
    /// The folder in which the program is started.
    std::string working() const { return m_folder.path() + "working/"; }
    /// The user's folder of videos, in which the first panel starts.
    std::string videos() const { return m_folder.path() + "videos"; }
    /// The folder that the settings name as the last one.
    std::string earlier() const { return m_folder.path() + "earlier/"; }

    /// Opens, turns and saves a video by names without a folder, and quits. Returns the output.
    std::string doTheWholeJob() const
    {
        const WorkingDirectory directory(working());
        ExternalProgram program;
        program.waitForWindow("Tarnwell");
        program.keysUntilWindow("ctrl+o", "Open Video");
        program.chooseInPanel("Open Video", "clip.mp4");
        program.waitForWindow("clip.mp4"); // until then it ignores the shortcut
        program.keysUntilWindow("ctrl+s", "Save Video");
        program.chooseInPanel("Save Video", "out.mp4");
        std::string printed = program.waitForOutput("Percent : ");
        EXPECT_TRUE(waitUntil([this] { return exists(videos() + "/out.mp4"); }));
        program.keysUntilWindow("Return", "clip.mp4 — Tarnwell"); // answers the alert
        EXPECT_TRUE(waitUntil([&] {
            if (program.isRunning())
                program.keys("ctrl+q");
            return !program.isRunning();
        }));
        EXPECT_EQ(program.waitForExit(), 0);
        return printed;
    }

private:
    OwnTemporaryFolder m_temporary;
    TemporaryDirectory m_folder;
    std::vector<std::unique_ptr<EnvironmentValue>> m_variables;
};

TEST_F(PersistenceTest, aRunWithBothPanelsChangesNothingInTheUsersFolders)
{
    const auto before = treeOf(user());
    ASSERT_EQ(before.size(), 3 * std::size(userFolders) + 2);
    const OpenWatch settingsWatch(settings());
    const std::string printed = doTheWholeJob();
    EXPECT_FALSE(settingsWatch.wasOpened());
    EXPECT_EQ(treeOf(user()), before);
    // The panels started in the folder of videos, not in the working directory or the folder of the settings.
    EXPECT_NE(printed.find("\"-i\", \"" + videos() + "/clip.mp4\""), std::string::npos) << printed;
    EXPECT_EQ(namesIn(earlier()), std::vector<std::string>{"clip.mp4"});
    EXPECT_EQ(namesIn(working()), std::vector<std::string>());
    EXPECT_EQ(namesIn(videos()), (std::vector<std::string>{"clip.mp4", "out.mp4"}));
}

} // namespace tarnwell::test
