// SPDX-License-Identifier: MIT
#include "desktop/PathText.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwell::test
{

TEST(PathTextTest, pathsComeBackAsTheyWere)
{
    for (const std::string path : {"", "/", "/tmp/clip.mp4", "/tmp/a \"b\" %20:\n\t-x",
             "/tmp/Grüße/動画/🎬.mp4", "/tmp/u\u0308ber", "/tmp/\u00fcber"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(pathOfText(textOfPath(path)), path);
    }
}

TEST(PathTextTest, aPathsTextIsItsCharacters)
{
    EXPECT_EQ(textOfPath("/tmp/Gr\xc3\xbc\xc3\x9f"
                         "e"),
        QStringLiteral("/tmp/Grüße"));
}

TEST(PathTextTest, composedAndDecomposedLettersStayApart)
{
    EXPECT_NE(textOfPath("\u00fc"), textOfPath("u\u0308"));
    EXPECT_NE(pathOfText(QStringLiteral("\u00fc")), pathOfText(QStringLiteral("u\u0308")));
}

TEST(PathTextTest, bytesThatAreNoTextAreShownAsReplacementCharacters)
{
    EXPECT_EQ(textOfPath("/tmp/a\xff"
                         "b"),
        QStringLiteral("/tmp/a\ufffdb"));
}

TEST(PathTextTest, theProgramsOwnTextsAreUtf8)
{
    EXPECT_EQ(textOf("Größe “x” 🎬"), QStringLiteral("Größe “x” 🎬"));
    EXPECT_EQ(textOf(""), QString());
}

} // namespace tarnwell::test
