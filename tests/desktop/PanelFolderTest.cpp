// SPDX-License-Identifier: MIT
#include "desktop/PanelFolder.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

#include <filesystem>

namespace tarnwell::test
{

/// A home folder and settings of the test's own.
class PanelFolderTest : public testing::Test
{
protected:
    PanelFolderTest()
    {
        set("HOME", home());
        set("XDG_CONFIG_HOME", home() + "/config");
        std::filesystem::create_directories(home() + "/config");
    }

    ~PanelFolderTest() override
    {
        for (const auto& [name, value] : m_earlier)
            value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }

    std::string home() const { return m_folder.path() + "home"; }
    std::string makeFolder(const std::string& name) const
    {
        std::filesystem::create_directories(m_folder.path() + name);
        return m_folder.path() + name;
    }
    std::string start() const { return m_panelFolder.path().toStdString(); }

    PanelFolder m_panelFolder;

private:
    void set(const char* name, const std::string& value)
    {
        m_earlier.emplace_back(name, qgetenv(name));
        qputenv(name, QByteArray::fromStdString(value));
    }

    TemporaryDirectory m_folder;
    std::vector<std::pair<const char*, QByteArray>> m_earlier;
};

TEST_F(PanelFolderTest, theFirstPanelStartsInTheFolderOfVideos)
{
    const std::string films = makeFolder("home/Films");
    writeFile(home() + "/config/user-dirs.dirs", "XDG_VIDEOS_DIR=\"$HOME/Films\"\n");
    EXPECT_EQ(start(), films);
}

TEST_F(PanelFolderTest, theFirstPanelStartsInTheHomeFolderIfThereIsNoFolderOfVideos)
{
    EXPECT_EQ(start(), home());
}

TEST_F(PanelFolderTest, aLaterPanelStartsInTheFolderOfTheLastFile)
{
    m_panelFolder.remember(makeFolder("first") + "/clip.mp4");
    const std::string second = makeFolder("second");
    m_panelFolder.remember(second + "/a file that was only chosen.mp4");
    EXPECT_EQ(start(), second);
}

TEST_F(PanelFolderTest, aDeletedFolderIsForgotten)
{
    makeFolder("home/Videos");
    const std::string gone = makeFolder("gone");
    m_panelFolder.remember(gone + "/clip.mp4");
    std::filesystem::remove(gone);
    EXPECT_EQ(start(), home() + "/Videos");
}

TEST_F(PanelFolderTest, aFolderOfTheDocumentPortalIsNotRemembered)
{
    const std::string folder = makeFolder("folder");
    m_panelFolder.remember(folder + "/clip.mp4");
    for (const char* granted : {"/run/user/1000/doc/2a1b/clip.mp4", "/run/flatpak/doc/2a1b/clip.mp4"}) {
        m_panelFolder.remember(granted);
        EXPECT_EQ(start(), folder);
    }
}

} // namespace tarnwell::test
