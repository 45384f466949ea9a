// SPDX-License-Identifier: MIT
#include "tests/desktop/PanelTest.h"

#include <QLineEdit>

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell::test
{

class SavePanelTest : public PanelTest
{
};

TEST_F(SavePanelTest, proposesTheNameAndAddsTheExtensionByReturnAndByTheButton)
{
    for (const bool byButton : {false, true}) {
        beginSave("Rotated and Flipped");
        EXPECT_EQ(nameField().text(), QStringLiteral("Rotated and Flipped"));
        byButton ? realClick(acceptButton()) : realKeys("Return");
        EXPECT_EQ(answer(), folder() + "Rotated and Flipped.mp4");
        forgetAnswers();
    }
}

TEST_F(SavePanelTest, theProposalIsSelectedAndATypedNameReplacesIt)
{
    beginSave();
    EXPECT_TRUE(nameField().hasFocus());
    realText("Holiday");
    realKeys("Return"); // once
    EXPECT_EQ(answer(), folder() + "Holiday.mp4");
}

TEST_F(SavePanelTest, cancelAndEscapeChooseNothing)
{
    for (const bool byButton : {false, true}) {
        beginSave();
        byButton ? realClick(cancelButton()) : realKeys("Escape");
        EXPECT_EQ(answer(), std::nullopt);
        forgetAnswers();
    }
}

struct TypedName {
    const char* description;
    const char* typed;
    const char* written;
};

void PrintTo(const TypedName& name, std::ostream* stream)
{
    *stream << name.description;
}

std::string typedName(const testing::TestParamInfo<TypedName>& row)
{
    return row.param.description;
}

class SavePanelNameTest : public SavePanelTest, public testing::WithParamInterface<TypedName>
{
};

TEST_P(SavePanelNameTest, isTakenAsItIsTyped)
{
    beginSave();
    enter(QString::fromUtf8(GetParam().typed));
    EXPECT_EQ(answer(), folder() + GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(names, SavePanelNameTest,
    testing::Values(TypedName{"withoutExtension", "Clip", "Clip.mp4"},
        TypedName{"withTheExtension", "Clip.mp4", "Clip.mp4"},
        TypedName{"withTheExtensionInCapitals", "Clip.MP4", "Clip.MP4"},
        TypedName{"withADot", "Video 1.2", "Video 1.2.mp4"},
        TypedName{"withAnotherExtension", "clip.mov", "clip.mov.mp4"},
        TypedName{"withADotAtItsEnd", "clip.", "clip..mp4"}, TypedName{"withoutAStem", ".mp4", ".mp4"},
        TypedName{"hidden", ".clip", ".clip.mp4"}, TypedName{"likeAnExtensionWithoutDot", "mp4", "mp4.mp4"},
        TypedName{"withQuotationMarks", "the \"best\" clip", "the \"best\" clip.mp4"},
        TypedName{"inQuotationMarks", "\"clip\"", "\"clip\".mp4"},
        TypedName{"withOneQuotationMark", "19\" screen", "19\" screen.mp4"},
        TypedName{"withBlanks", "  two  words ", "  two  words .mp4"},
        TypedName{"withPercentSigns", "100%20%s%1", "100%20%s%1.mp4"},
        TypedName{"withColons", "a:b::c", "a:b::c.mp4"}, TypedName{"likeAUrl", "file:clip", "file:clip.mp4"},
        TypedName{"likeAnOption", "-y", "-y.mp4"}, TypedName{"withPatternSigns", "*[a]?{b}", "*[a]?{b}.mp4"},
        TypedName{"withShellSigns", "$HOME `x`;&'\\", "$HOME `x`;&'\\.mp4"},
        TypedName{"withATilde", "~clip", "~clip.mp4"},
        TypedName{"inOtherScripts", "Grüße 動画 עברית", "Grüße 動画 עברית.mp4"},
        TypedName{"outsideTheBasicPlane", "🎬", "🎬.mp4"},
        TypedName{"decomposed", "u\u0308ber", "u\u0308ber.mp4"}),
    typedName);

TEST_F(SavePanelTest, aPathMayBeTyped)
{
    makeFolder("sub");
    beginSave();
    enter(QStringLiteral("sub/Clip"));
    EXPECT_EQ(answer(), folder() + "sub/Clip.mp4");
}

TEST_F(SavePanelTest, anAbsolutePathMayBeTyped)
{
    const TemporaryDirectory other;
    beginSave();
    enter(QString::fromStdString(other.path() + "Clip"));
    EXPECT_EQ(answer(), other.path() + "Clip.mp4");
}

TEST_F(SavePanelTest, theNameOfAFolderOpensTheFolder)
{
    makeFolder("sub");
    makeFolder("sub/deeper");
    beginSave();
    enter(QStringLiteral("sub"));
    EXPECT_EQ(shownFolder(), folder() + "sub/");
    enter(QStringLiteral("deeper/"));
    ASSERT_TRUE(isPanelUp());
    EXPECT_EQ(shownFolder(), folder() + "sub/deeper/");
    EXPECT_FALSE(isAnswered());
    enter(QStringLiteral("Clip"));
    EXPECT_EQ(answer(), folder() + "sub/deeper/Clip.mp4");
}

TEST_F(SavePanelTest, aMissingFolderIsReportedAndNotChosen)
{
    for (const char* name : {"missing/", "missing/Clip"}) {
        SCOPED_TRACE(name);
        beginSave();
        nextQuestionGets(QMessageBox::Ok);
        enter(QString::fromLatin1(name));
        waitForAnsweredQuestion();
        EXPECT_TRUE(questions().last().contains(QStringLiteral("missing” does not exist")))
            << questions().last().toStdString();
        EXPECT_FALSE(isAnswered());
        realKeys("Escape");
        EXPECT_EQ(answer(), std::nullopt);
        forgetAnswers();
    }
}

TEST_F(SavePanelTest, aFolderThatCannotBeWrittenIsNotSavedIn)
{
    makeFolder("closed");
    makeFile("closed/Clip.mp4"); // even over a file that could be
    ASSERT_EQ(::chmod((folder() + "closed").c_str(), 0555), 0);
    beginSave();
    typeName(QStringLiteral("closed/Clip"));
    nextQuestionGets(QMessageBox::Ok);
    uid_t real = 0;
    uid_t effective = 0;
    uid_t saved = 0;
    ASSERT_EQ(::getresuid(&real, &effective, &saved), 0);
    if (real == 0) { // root can write everywhere
        ASSERT_EQ(::setresuid(65534, effective, saved), 0);
    }
    static_cast<QDialog&>(panel()).accept();
    EXPECT_EQ(::setresuid(real, effective, saved), 0);
    waitForAnsweredQuestion();
    EXPECT_TRUE(questions().last().contains(QStringLiteral("cannot save")));
    EXPECT_FALSE(isAnswered());
    realKeys("Escape");
    EXPECT_EQ(answer(), std::nullopt);
    ::chmod((folder() + "closed").c_str(), 0755);
}

TEST_F(SavePanelTest, thePersonalFolderMayBeTypedAsATilde)
{
    const TemporaryDirectory home;
    const QByteArray usual = qgetenv("HOME");
    qputenv("HOME", QByteArray::fromStdString(home.path()));
    beginSave();
    enter(QStringLiteral("~/Clip"));
    EXPECT_EQ(answer(), home.path() + "Clip.mp4");
    qputenv("HOME", usual);
}

TEST_F(SavePanelTest, noNameChoosesNothing)
{
    beginSave();
    typeName(QStringLiteral("x"));
    realKeys("BackSpace");
    realKeys("Return");
    EXPECT_TRUE(isPanelUp());
    EXPECT_FALSE(isAnswered());
}

TEST_F(SavePanelTest, anExistingFileIsReplacedOnlyAfterYes)
{
    makeFile("Rotated.mp4");
    beginSave();
    nextQuestionGets(QMessageBox::Yes);
    realKeys("Return");
    EXPECT_EQ(answer(), folder() + "Rotated.mp4");
    ASSERT_EQ(questions().size(), 1);
    EXPECT_TRUE(questions().first().contains(QStringLiteral("“Rotated.mp4”")));
}

TEST_F(SavePanelTest, aNoKeepsThePanelOpen)
{
    makeFile("Rotated.mp4");
    for (const bool isCancelled : {false, true}) {
        SCOPED_TRACE(isCancelled);
        beginSave();
        nextQuestionGets(QMessageBox::No);
        realKeys("Return");
        waitForAnsweredQuestion();
        EXPECT_EQ(questions().size(), 1);
        EXPECT_TRUE(isPanelUp());
        EXPECT_FALSE(isAnswered());
        isCancelled ? realKeys("Escape") : enter(QStringLiteral("Other"));
        EXPECT_EQ(answer(), isCancelled ? Answer() : folder() + "Other.mp4");
        forgetAnswers();
    }
}

TEST_F(SavePanelTest, aFileThatIsPickedFromTheListIsReplacedOnlyAfterAYes)
{
    makeFile("Earlier.mp4");
    beginSave();
    clickInList(QStringLiteral("Earlier.mp4"));
    nextQuestionGets(QMessageBox::Yes);
    realClick(acceptButton());
    EXPECT_EQ(answer(), folder() + "Earlier.mp4");
    EXPECT_EQ(questions().size(), 1);
}

TEST_F(SavePanelTest, aFileOfTheNameWithoutExtensionIsNoObstacle)
{
    makeFile("Rotated");
    beginSave();
    realKeys("Return");
    EXPECT_EQ(answer(), folder() + "Rotated.mp4");
    EXPECT_TRUE(questions().isEmpty());
}

TEST_F(SavePanelTest, aFolderOfTheFinalNameIsNotReplaced)
{
    makeFolder("Rotated.mp4");
    beginSave();
    realKeys("Return");
    EXPECT_TRUE(questions().isEmpty()) << "a folder cannot be replaced";
    EXPECT_FALSE(isAnswered());
}

} // namespace tarnwell::test
