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
#include <vector>

namespace tarnwell::test
{

namespace
{

const std::string playerName = "Name=QuickTime Player\n";

} // namespace

/// Opens a file with "QuickTime Player" in a separate process, with the applications that a test adds.
class OpenWithTest : public testing::Test
{
protected:
    ~OpenWithTest() override
    {
        m_process.closeWriteChannel();
        EXPECT_TRUE(waitForEnd(m_process));
    }

    /// Adds a program that records its name and its arguments, one per line. Returns its path.
    std::string addProgram(const std::string& name) const
    {
        const std::string path = m_folder.path() + name;
        const std::string part = recordPath() + ".part";
        // The rename makes the file complete when the test sees it.
        writeFile(path,
            "#!/bin/sh\nprintf '%s\\n' " + name + " \"$@\" >'" + part + "'\nmv '" + part + "' '"
                + recordPath() + "'\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    std::string recordPath() const { return m_folder.path() + "arguments"; }
    std::string file(const std::string& name = "clip.mp4") const { return m_folder.path() + name; }

    /// Waits for the record of the program and returns it.
    std::string started()
    {
        EXPECT_TRUE(waitUntil([this] { return exists(recordPath()); })) << "no program was started";
        return exists(recordPath()) ? contentsOf(recordPath()) : std::string();
    }

    /// Opens the file and waits for the end of the call. Returns the URLs that were opened with the default
    /// application, one per line.
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

struct Entry {
    const char* file; // below the folder of applications; "system/" for that of the system
    std::string text; // "PROGRAM" is replaced by the path of a program that records its arguments
};

struct Desktop {
    const char* name;
    std::vector<Entry> entries;
    std::string recorded; // by the program, before the line with the path; empty: the default application
    const char* fileName = "my clip.mp4";
    QString locale = QStringLiteral("C.UTF-8");
};

void PrintTo(const Desktop& desktop, std::ostream* stream)
{
    *stream << desktop.name;
}

class OpenWithEntryTest : public OpenWithTest, public testing::WithParamInterface<Desktop>
{
protected:
    void addEntry(const Entry& entry)
    {
        const std::string system = "system/";
        std::string text = entry.text;
        const std::string mark = "PROGRAM";
        const std::string program = addProgram("player");
        if (const auto place = text.find(mark); place != std::string::npos)
            text.replace(place, mark.size(), program);
        const std::string file = entry.file;
        if (file.starts_with(system))
            m_folders.addSystemEntry(file.substr(system.size()), text);
        else
            m_folders.addUserEntry(file, text);
    }
};

TEST_P(OpenWithEntryTest, decidesWhichApplicationIsStarted)
{
    const Desktop& desktop = GetParam();
    m_locale = desktop.locale;
    for (const Entry& entry : desktop.entries)
        addEntry(entry);
    const std::string path = file(desktop.fileName);
    if (desktop.recorded.empty()) {
        EXPECT_EQ(open(path), FileURL(path).absoluteString() + "\n");
    } else {
        EXPECT_EQ(open(path), "");
        EXPECT_EQ(started(), desktop.recorded + path + "\n");
    }
}

const QString german = QStringLiteral("de_DE.UTF-8");

INSTANTIATE_TEST_SUITE_P(started, OpenWithEntryTest,
    testing::Values(Desktop{"theApplicationOfThatName",
                        {{"other.desktop", "Name=Other\nExec=PROGRAM other %f\n"},
                            {"player.desktop", playerName + "Exec=PROGRAM --play %f\n"}},
                        "player\n--play\n", "my \"clip\" $HOME % %f ä.mp4"},
        Desktop{"withANameThatIsNoUtf8", {{"player.desktop", playerName + "Exec=PROGRAM %f\n"}}, "player\n",
            "caf\xe9 \xff\xfe.mp4"},
        Desktop{"withALocalPathWhereItTakesUrls", {{"player.desktop", playerName + "Exec=PROGRAM %U\n"}},
            "player\n", "my clip \xc3\xa4 \xff.mp4"},
        Desktop{"withThePathAppendedWithoutAFieldCode",
            {{"player.desktop", playerName + "Exec=PROGRAM --play\n"}}, "player\n--play\n"},
        Desktop{"fromTheSystemsEntries", {{"system/vendor/player.desktop", playerName + "Exec=PROGRAM %f\n"}},
            "player\n"},
        Desktop{"fromTheUsersEntryOfTheSameId",
            {{"system/player.desktop", playerName + "Exec=PROGRAM ofSystem %f\n"},
                {"player.desktop", playerName + "Exec=PROGRAM ofUser %f\n"}},
            "player\nofUser\n"},
        Desktop{"fromAnEntryThatMenusDoNotShow",
            {{"player.desktop", playerName + "NoDisplay=true\nExec=PROGRAM %f\n"}}, "player\n"},
        Desktop{"byTheUntranslatedName",
            {{"player.desktop", playerName + "Name[de]=Abspieler\nExec=PROGRAM %f\n"}}, "player\n",
            "my clip.mp4", german},
        Desktop{"byTheNameInTheUsersLanguage",
            {{"player.desktop", "Name=Other\nName[de]=QuickTime Player\nExec=PROGRAM %f\n"}}, "player\n",
            "my clip.mp4", german}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(theDefaultApplication, OpenWithEntryTest,
    testing::Values(Desktop{"withoutEntries", {}, ""},
        Desktop{"withAnEntryThatTheUserHides",
            {{"system/player.desktop", playerName + "Exec=PROGRAM %f\n"},
                {"player.desktop", "Hidden=true\n"}},
            ""},
        Desktop{"withSimilarNames",
            {{"a.desktop", "Name=QuickTime Player Deluxe\nExec=PROGRAM %f\n"},
                {"b.desktop", "Name=quicktime player\nExec=PROGRAM %f\n"},
                {"c.desktop", "Name=Other\nGenericName=QuickTime Player\nExec=PROGRAM %f\n"},
                {"d.desktop",
                    "Name=Suite\nExec=PROGRAM %f\nActions=play;\n[Desktop Action play]\n"
                    "Name=QuickTime Player\nExec=true\n"}},
            ""},
        Desktop{"withAProgramThatIsNotInstalled",
            {{"player.desktop", playerName + "Exec=/nonexistent/player %f\n"}}, ""},
        Desktop{"withAProgramThatCannotBeStarted",
            {{"player.desktop", playerName + "Exec=PROGRAM %f\nPath=/nonexistent\n"}}, ""}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(OpenWithTest, asksAnApplicationThatTheBusActivatesToOpenTheAddress)
{
    const BusService player(
        QStringLiteral("org.example.Player"), QStringLiteral("/org/example/Player"), BusService::emptyReply);
    m_folders.addUserEntry("org.example.Player.desktop",
        playerName + "DBusActivatable=true\nExec=" + addProgram("player") + " %f\n");
    EXPECT_EQ(open(file("my clip.mp4")), "");
    ASSERT_TRUE(waitUntil([&] { return !player.calls().isEmpty(); }));
    const QDBusMessage call = player.calls().first();
    EXPECT_EQ(call.interface(), QStringLiteral("org.freedesktop.Application"));
    EXPECT_EQ(call.member(), QStringLiteral("Open"));
    const QString address = QString::fromStdString(FileURL(file("my clip.mp4")).absoluteString());
    EXPECT_EQ(call.arguments().at(0).toStringList(), QStringList(address));
    EXPECT_FALSE(exists(recordPath()));
}

/// This program and a player are installed for videos.
class OtherApplicationTest : public OpenWithTest
{
protected:
    OtherApplicationTest()
    {
        m_folders.addUserEntry("org.tarnwell.Tarnwell.desktop", "Name=Tarnwell\nExec=true %U\n");
        m_folders.addUserEntry("other.desktop", "Name=Other\nExec=" + addProgram("other") + " %f\n");
        m_folders.addSystemMediaType("video/mp4", "*.mp4");
    }
};

TEST_F(OtherApplicationTest, isStartedWhereThisProgramIsTheDefaultForVideos)
{
    m_folders.setApplications("video/mp4", "org.tarnwell.Tarnwell.desktop;other.desktop;");
    EXPECT_EQ(open(file()), "");
    EXPECT_EQ(started(), "other\n" + file() + "\n");
}

TEST_F(OtherApplicationTest, isNotChosenWhereThisProgramIsNotTheDefault)
{
    m_folders.setApplications("video/mp4", "other.desktop;org.tarnwell.Tarnwell.desktop;");
    EXPECT_EQ(open(file()), FileURL(file()).absoluteString() + "\n");
}

TEST_F(OtherApplicationTest, isNotNeededWhereThereIsNone)
{
    m_folders.setApplications("video/mp4", "org.tarnwell.Tarnwell.desktop;");
    EXPECT_EQ(open(file()), FileURL(file()).absoluteString() + "\n");
}

} // namespace tarnwell::test
