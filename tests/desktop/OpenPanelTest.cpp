// SPDX-License-Identifier: MIT
#include "tests/desktop/PanelTest.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwell::test
{

class OpenPanelTest : public PanelTest
{
};

TEST_F(OpenPanelTest, cancelChoosesNothing)
{
    beginOpen();
    realClick(cancelButton());
    EXPECT_EQ(answer(), std::nullopt);
}

TEST_F(OpenPanelTest, escapeChoosesNothingThoughAFileIsSelected)
{
    makeFile("clip.mp4");
    beginOpen();
    clickInList(QStringLiteral("clip.mp4"));
    realKeys("Escape");
    EXPECT_EQ(answer(), std::nullopt);
}

TEST_F(OpenPanelTest, aDoubleClickChoosesAFile)
{
    makeFile("clip.mp4");
    beginOpen();
    doubleClickInList(QStringLiteral("clip.mp4"));
    EXPECT_EQ(answer(), folder() + "clip.mp4");
}

TEST_F(OpenPanelTest, filesOfEveryTypeAreListed)
{
    for (const char* name : {"clip.mp4", "clip.mkv", "letter.txt", "noextension"})
        makeFile(name);
    beginOpen();
    for (const char* name : {"clip.mp4", "clip.mkv", "letter.txt", "noextension"})
        clickInList(QString::fromLatin1(name));
    realClick(acceptButton());
    EXPECT_EQ(answer(), folder() + "noextension");
}

struct FileName {
    const char* description;
    const char* name;
};

void PrintTo(const FileName& name, std::ostream* stream)
{
    *stream << name.description;
}

std::string description(const testing::TestParamInfo<FileName>& row)
{
    return row.param.description;
}

class OpenPanelNameTest : public OpenPanelTest, public testing::WithParamInterface<FileName>
{
protected:
    QString name() const { return QString::fromUtf8(GetParam().name); }
    std::string path() const { return folder() + GetParam().name; }
};

class OpenPanelTypedNameTest : public OpenPanelNameTest
{
};

TEST_P(OpenPanelTypedNameTest, isTakenAsItIsTyped)
{
    makeFile(GetParam().name);
    beginOpen();
    enter(name());
    EXPECT_EQ(answer(), path());
}

class OpenPanelListedNameTest : public OpenPanelNameTest
{
};

TEST_P(OpenPanelListedNameTest, isChosenByAClickAndTheButton)
{
    makeFile(GetParam().name);
    beginOpen();
    clickInList(name());
    realClick(acceptButton());
    EXPECT_EQ(answer(), path());
}

TEST_P(OpenPanelListedNameTest, isChosenByReturnInTheList)
{
    makeFile(GetParam().name);
    beginOpen();
    clickInList(name());
    realKeys("Return");
    EXPECT_EQ(answer(), path());
}

const auto typableNames = testing::Values(FileName{"plain", "clip.mp4"}, FileName{"withoutExtension", "clip"},
    FileName{"withQuotationMarks", "the \"best\" clip.mp4"}, FileName{"inQuotationMarks", "\"clip.mp4\""},
    FileName{"withOneQuotationMark", "19\" screen.mp4"}, FileName{"withBlanks", "  two  words "},
    FileName{"withPercentSigns", "100%20%s%1.mp4"}, FileName{"withColons", "a:b::c.mp4"},
    FileName{"likeAUrl", "file:clip.mp4"}, FileName{"likeAnOption", "-i.mp4"},
    FileName{"withPatternSigns", "*[a]?{b}.mp4"}, FileName{"withShellSigns", "$HOME `x`;&'\\.mp4"},
    FileName{"withATilde", "~clip.mp4"}, FileName{"inOtherScripts", "Grüße 動画 עברית.mp4"},
    FileName{"outsideTheBasicPlane", "🎬.mp4"}, FileName{"decomposed", "u\u0308ber.mp4"});

INSTANTIATE_TEST_SUITE_P(names, OpenPanelTypedNameTest, typableNames, description);
INSTANTIATE_TEST_SUITE_P(names, OpenPanelListedNameTest, typableNames, description);
INSTANTIATE_TEST_SUITE_P(namesThatCannotBeTyped, OpenPanelListedNameTest,
    testing::Values(FileName{"withALineFeed", "two\nlines.mp4"}, FileName{"withATab", "a\tb.mp4"},
        FileName{"withALineFeedAtItsEnd", "clip.mp4\n"}),
    description);

TEST_F(OpenPanelTest, anAbsolutePathMayBeTyped)
{
    makeFile("clip.mp4");
    makeFolder("elsewhere");
    beginOpen();
    panel().setDirectory(QString::fromStdString(folder() + "elsewhere"));
    enter(QString::fromStdString(folder() + "clip.mp4"));
    EXPECT_EQ(answer(), folder() + "clip.mp4");
}

TEST_F(OpenPanelTest, aTypedFolderIsEnteredAndNotChosen)
{
    makeFolder("sub");
    beginOpen();
    enter(QStringLiteral("sub"));
    EXPECT_EQ(shownFolder(), folder() + "sub/");
    EXPECT_FALSE(isAnswered());
}

TEST_F(OpenPanelTest, aListedFolderIsEnteredAndNotChosen)
{
    makeFolder("sub");
    makeFile("sub/clip.mp4");
    beginOpen();
    clickInList(QStringLiteral("sub"));
    realClick(acceptButton());
    EXPECT_EQ(shownFolder(), folder() + "sub/");
    EXPECT_FALSE(isAnswered());
    doubleClickInList(QStringLiteral("clip.mp4"));
    EXPECT_EQ(answer(), folder() + "sub/clip.mp4");
}

TEST_F(OpenPanelTest, aMissingFileIsNotChosen)
{
    beginOpen();
    nextQuestionGets(QMessageBox::Ok);
    enter(QStringLiteral("missing.mp4"));
    waitForAnsweredQuestion();
    EXPECT_EQ(questions().size(), 1);
    EXPECT_TRUE(isPanelUp());
    EXPECT_FALSE(isAnswered());
}

} // namespace tarnwell::test
