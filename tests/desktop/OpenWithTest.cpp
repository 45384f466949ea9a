// SPDX-License-Identifier: MIT
#include "platform/FileURL.h"
#include "tests/desktop/BusService.h"
#include "tests/desktop/DataFolders.h"
#include "tests/support/Folders.h"
#include "tests/support/WindowTest.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tarnwell::test
{

namespace
{

const std::string playerName = "Name=QuickTime Player\n";

} // namespace

/// Opens a file with "QuickTime Player" in a process of its own, among the applications that a test adds.
class OpenWithTest : public testing::Test
{
protected:
    ~OpenWithTest() override
    {
        m_process.closeWriteChannel();
        EXPECT_TRUE(waitForEnd(m_process));
    }

    /// The path of a program that writes its name and its arguments down, one a line.
    std::string addProgram(const std::string& name) const
    {
        const std::string path = m_folder.path() + name;
        const std::string part = recordPath() + ".part";
        // Renamed only when it is complete: the test waits for the file.
        writeFile(path,
            "#!/bin/sh\nprintf '%s\\n' " + name + " \"$@\" >'" + part + "'\nmv '" + part + "' '"
                + recordPath() + "'\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    std::string execOf(const std::string& program, const std::string& codes) const
    {
        return "Exec=" + addProgram(program) + " " + codes + "\n";
    }

    std::string recordPath() const { return m_folder.path() + "arguments"; }
    std::string file(const std::string& name = "clip.mp4") const { return m_folder.path() + name; }

    /// What the program of the test has written down.
    std::string started()
    {
        EXPECT_TRUE(waitUntil([this] { return exists(recordPath()); })) << "no program was started";
        return exists(recordPath()) ? contentsOf(recordPath()) : std::string();
    }

    /// Opens the file and waits until that has been asked for; the addresses that went to the default
    /// application instead, each with a line feed.
    std::string open(const std::string& path)
    {
        auto environment = m_folders.environment();
        environment.insert(QStringLiteral("LC_ALL"), m_locale);
        m_process.setProcessEnvironment(environment);
        m_process.start(QStringLiteral(TARNWELL_BUILD_FOLDER "/tests/openWithApplication"),
            {QStringLiteral("QuickTime Player")});
        m_process.write(QByteArray::fromStdString(path + "\n"));
        QByteArray output;
        EXPECT_TRUE(waitUntil([&] {
            output += m_process.readAllStandardOutput();
            return output.endsWith("done\n");
        })) << "openWithApplication printed "
            << output.toStdString();
        output.chop(static_cast<qsizetype>(std::string("done\n").size()));
        return output.toStdString();
    }

    DataFolders m_folders;
    QString m_locale = QStringLiteral("C.UTF-8");

private:
    TemporaryDirectory m_folder;
    QProcess m_process;
};

TEST_F(OpenWithTest, startsTheApplicationOfThatNameWithThePath)
{
    m_folders.addUserEntry("other.desktop", "Name=Other\n" + execOf("other", "%f"));
    m_folders.addUserEntry("player.desktop", playerName + execOf("player", "--play %f"));
    const std::string path = file("my \"clip\" $HOME % %f ä.mp4");
    EXPECT_EQ(open(path), "");
    EXPECT_EQ(started(), "player\n--play\n" + path + "\n");
}

TEST_F(OpenWithTest, passesANameThatIsNoUtf8Unchanged)
{
    m_folders.addUserEntry("player.desktop", playerName + execOf("player", "%f"));
    const std::string path = file("caf\xe9 \xff\xfe.mp4");
    EXPECT_EQ(open(path), "");
    EXPECT_EQ(started(), "player\n" + path + "\n");
}

TEST_F(OpenWithTest, passesALocalPathToAnApplicationThatTakesAddresses)
{
    m_folders.addUserEntry("player.desktop", playerName + execOf("player", "%U"));
    const std::string path = file("my clip \xc3\xa4 \xff.mp4");
    EXPECT_EQ(open(path), "");
    EXPECT_EQ(started(), "player\n" + path + "\n");
}

TEST_F(OpenWithTest, appendsThePathWhereTheEntryHasNoFieldCode)
{
    m_folders.addUserEntry("player.desktop", playerName + execOf("player", "--play"));
    EXPECT_EQ(open(file()), "");
    EXPECT_EQ(started(), "player\n--play\n" + file() + "\n");
}

TEST_F(OpenWithTest, findsTheSystemsApplicationsToo)
{
    m_folders.addSystemEntry("vendor/player.desktop", playerName + execOf("player", "%f"));
    EXPECT_EQ(open(file()), "");
    EXPECT_EQ(started(), "player\n" + file() + "\n");
}

TEST_F(OpenWithTest, anEntryOfTheUserReplacesTheSystemsEntryOfTheSameId)
{
    m_folders.addSystemEntry("player.desktop", playerName + execOf("ofSystem", "%f"));
    m_folders.addUserEntry("player.desktop", playerName + execOf("ofUser", "%f"));
    EXPECT_EQ(open(file()), "");
    EXPECT_EQ(started(), "ofUser\n" + file() + "\n");
}

TEST_F(OpenWithTest, anEntryHiddenByTheUserHidesTheSystemsEntryOfTheSameId)
{
    m_folders.addSystemEntry("player.desktop", playerName + execOf("player", "%f"));
    m_folders.addUserEntry("player.desktop", "Hidden=true\n");
    EXPECT_EQ(open(file()), "file://" + file() + "\n");
}

TEST_F(OpenWithTest, anEntryThatMenusDoNotShowIsAnApplication)
{
    m_folders.addUserEntry("player.desktop", playerName + "NoDisplay=true\n" + execOf("player", "%f"));
    EXPECT_EQ(open(file()), "");
    EXPECT_EQ(started(), "player\n" + file() + "\n");
}

TEST_F(OpenWithTest, theUntranslatedNameCountsInEveryLanguage)
{
    m_locale = QStringLiteral("de_DE.UTF-8");
    m_folders.addUserEntry("player.desktop", playerName + "Name[de]=Abspieler\n" + execOf("player", "%f"));
    EXPECT_EQ(open(file()), "");
    EXPECT_EQ(started(), "player\n" + file() + "\n");
}

TEST_F(OpenWithTest, theNameInTheUsersLanguageCounts)
{
    m_locale = QStringLiteral("de_DE.UTF-8");
    m_folders.addUserEntry(
        "player.desktop", "Name=Other\nName[de]=QuickTime Player\n" + execOf("player", "%f"));
    EXPECT_EQ(open(file()), "");
    EXPECT_EQ(started(), "player\n" + file() + "\n");
}

TEST_F(OpenWithTest, onlyExactlyThatNameCounts)
{
    m_folders.addUserEntry("a.desktop", "Name=QuickTime Player Deluxe\n" + execOf("deluxe", "%f"));
    m_folders.addUserEntry("b.desktop", "Name=quicktime player\n" + execOf("lower", "%f"));
    m_folders.addUserEntry(
        "c.desktop", "Name=Other\nGenericName=QuickTime Player\n" + execOf("generic", "%f"));
    m_folders.addUserEntry("d.desktop",
        "Name=Suite\n" + execOf("suite", "%f")
            + "Actions=play;\n[Desktop Action play]\nName=QuickTime Player\nExec=true\n");
    EXPECT_EQ(open(file()), "file://" + file() + "\n");
}

TEST_F(OpenWithTest, usesTheDefaultApplicationWhereNoneHasTheName)
{
    EXPECT_EQ(open(file("my clip.mp4")), FileURL(file("my clip.mp4")).absoluteString() + "\n");
}

TEST_F(OpenWithTest, usesTheDefaultApplicationWhereTheProgramIsNotInstalled)
{
    m_folders.addUserEntry("player.desktop", playerName + "Exec=" + file("missing") + " %f\n");
    EXPECT_EQ(open(file()), "file://" + file() + "\n");
}

TEST_F(OpenWithTest, usesTheDefaultApplicationWhereTheProgramCannotBeStarted)
{
    m_folders.addUserEntry("player.desktop", playerName + execOf("player", "%f") + "Path=/nonexistent\n");
    EXPECT_EQ(open(file()), "file://" + file() + "\n");
}

TEST_F(OpenWithTest, asksAnApplicationThatTheBusActivatesToOpenTheAddress)
{
    const BusService player(
        QStringLiteral("org.example.Player"), QStringLiteral("/org/example/Player"), BusService::emptyReply);
    m_folders.addUserEntry(
        "org.example.Player.desktop", playerName + "DBusActivatable=true\n" + execOf("player", "%f"));
    EXPECT_EQ(open(file("my clip.mp4")), "");
    ASSERT_TRUE(waitUntil([&] { return !player.calls().isEmpty(); }));
    const QDBusMessage call = player.calls().first();
    EXPECT_EQ(call.interface(), QStringLiteral("org.freedesktop.Application"));
    EXPECT_EQ(call.member(), QStringLiteral("Open"));
    const QString address = QString::fromStdString(FileURL(file("my clip.mp4")).absoluteString());
    EXPECT_EQ(call.arguments().at(0).toStringList(), QStringList(address));
    EXPECT_FALSE(exists(recordPath()));
}

} // namespace tarnwell::test
