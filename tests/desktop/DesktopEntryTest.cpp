// SPDX-License-Identifier: MIT
#include "desktop/DesktopEntry.h"

#include "tests/desktop/DataFolders.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

QUrl movie()
{
    return QUrl::fromLocalFile(QStringLiteral("/movies/my clip.mp4"));
}

using Words = std::vector<std::string>;

Words wordsOf(const QStringList& command)
{
    Words words;
    for (const QString& word : command)
        words.push_back(word.toStdString());
    return words;
}

const std::string path = "/movies/my clip.mp4";
const std::string address = "file:///movies/my%20clip.mp4";

} // namespace

struct ExecText {
    const char* description;
    const char* exec;
    Words command;
};

void PrintTo(const ExecText& text, std::ostream* stream)
{
    *stream << text.description;
}

class ExecTextTest : public testing::TestWithParam<ExecText>
{
};

TEST_P(ExecTextTest, meansThisCommand)
{
    EXPECT_EQ(wordsOf(commandOfExecText(QString::fromUtf8(GetParam().exec), movie())), GetParam().command);
}

INSTANTIATE_TEST_SUITE_P(texts, ExecTextTest,
    testing::Values(ExecText{"withoutFile", "player", {"player"}},
        ExecText{"oneFile", "player %f", {"player", path}},
        ExecText{"manyFiles", "player %F", {"player", path}},
        ExecText{"oneAddress", "player %u", {"player", address}},
        ExecText{"manyAddresses", "player --new %U --end", {"player", "--new", address, "--end"}},
        ExecText{"iconAndNameAndPlace", "player %i %c %k %f", {"player", path}},
        ExecText{"codesOfEarlierTimes", "player %d %D %n %N %v %m %f", {"player", path}},
        ExecText{"quotedWords", "\"/opt/my player/run\" \"a b\" %f", {"/opt/my player/run", "a b", path}},
        ExecText{"severalBlanks", "  player   -x  %f ", {"player", "-x", path}},
        ExecText{"aCodeWithinAWord", "player --file=%f", {"player", "--file=" + path}},
        ExecText{"aPercentSign", "player --volume=50%% %f", {"player", "--volume=50%", path}},
        ExecText{"aPercentSignAlone", "player %% %f", {"player", "%", path}},
        ExecText{"aBackslashInQuotes", R"(player "a\\b \"c\" \$d" %f)", {"player", R"(a\b "c" $d)", path}},
        ExecText{"nothing", "", {}}),
    [](const auto& row) { return std::string(row.param.description); });

class DesktopEntryTest : public testing::Test
{
protected:
    static Words command(const char* name)
    {
        return wordsOf(commandOfApplicationNamed(QString::fromUtf8(name), movie()));
    }

    DataFolders m_folders;
};

TEST_F(DesktopEntryTest, anApplicationIsFoundByItsName)
{
    m_folders.addUserEntry("a.desktop", "[Desktop Entry]\nType=Application\nName=Other\nExec=other %f\n");
    m_folders.addUserEntry(
        "b.desktop", "[Desktop Entry]\nType=Application\nName=QuickTime Player\nExec=qt %f\n");
    EXPECT_EQ(command("QuickTime Player"), (Words{"qt", path}));
}

TEST_F(DesktopEntryTest, theSystemsApplicationsAreFoundToo)
{
    m_folders.addSystemEntry("a.desktop", "[Desktop Entry]\nType=Application\nName=Player\nExec=system\n");
    EXPECT_EQ(command("Player"), Words{"system"});
    m_folders.addUserEntry("b.desktop", "[Desktop Entry]\nType=Application\nName=Player\nExec=user\n");
    EXPECT_EQ(command("Player"), Words{"user"}) << "the user's own comes first";
}

TEST_F(DesktopEntryTest, anApplicationInASubfolderIsFound)
{
    m_folders.addUserEntry(
        "maker/a.desktop", "[Desktop Entry]\nType=Application\nName=Player\nExec=player\n");
    EXPECT_EQ(command("Player"), Words{"player"});
}

TEST_F(DesktopEntryTest, onlyExactlyThatNameCounts)
{
    m_folders.addUserEntry("a.desktop", "[Desktop Entry]\nType=Application\nName=Player Deluxe\nExec=a\n");
    m_folders.addUserEntry("b.desktop", "[Desktop Entry]\nType=Application\nName=player\nExec=b\n");
    m_folders.addUserEntry(
        "c.desktop", "[Desktop Entry]\nType=Application\nName[de]=Player\nGenericName=Player\nExec=c\n");
    EXPECT_EQ(command("Player"), Words());
}

TEST_F(DesktopEntryTest, aHiddenEntryIsNoApplication)
{
    m_folders.addUserEntry(
        "a.desktop", "[Desktop Entry]\nType=Application\nName=Player\nHidden=true\nExec=hidden\n");
    EXPECT_EQ(command("Player"), Words());
    m_folders.addSystemEntry(
        "b.desktop", "[Desktop Entry]\nType=Application\nName=Player\nHidden=false\nExec=seen\n");
    EXPECT_EQ(command("Player"), Words{"seen"});
}

TEST_F(DesktopEntryTest, theNameOfAnActionIsNotTheApplications)
{
    m_folders.addUserEntry("a.desktop",
        "[Desktop Entry]\nType=Application\nName=Suite\nExec=suite\nActions=play;\n"
        "[Desktop Action play]\nName=Player\nExec=suite --play\n");
    EXPECT_EQ(command("Player"), Words());
    EXPECT_EQ(command("Suite"), Words{"suite"});
}

TEST_F(DesktopEntryTest, aLinkIsNoApplication)
{
    m_folders.addUserEntry(
        "a.desktop", "[Desktop Entry]\nType=Link\nName=Player\nURL=https://example.org\nExec=x\n");
    EXPECT_EQ(command("Player"), Words());
}

TEST_F(DesktopEntryTest, entriesAreReadAsTheyAreWritten)
{
    m_folders.addUserEntry("a.desktop",
        "# a comment = no key\r\n\r\n[Desktop Entry]\r\nType = Application\r\n  Name=Größe=1\r\nExec= player "
        "--a=b %f\r\n");
    EXPECT_EQ(command("Größe=1"), (Words{"player", "--a=b", path}));
}

TEST_F(DesktopEntryTest, otherFilesAndUnreadableEntriesDoNotCount)
{
    m_folders.addUserEntry("a.txt", "[Desktop Entry]\nType=Application\nName=Player\nExec=text\n");
    m_folders.addUserEntry("b.desktop", std::string(70000, '=') + "\n\xff\xfe\n[\n=\n");
    m_folders.addUserEntry("c.desktop", "");
    EXPECT_EQ(command("Player"), Words());
}

TEST_F(DesktopEntryTest, aNameThatNobodyBearsHasNoCommand)
{
    EXPECT_EQ(command("QuickTime Player"), Words());
}

} // namespace tarnwell::test
