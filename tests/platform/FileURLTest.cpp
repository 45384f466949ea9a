// SPDX-License-Identifier: MIT
#include "platform/FileURL.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarnwell::test
{

struct PathCase {
    std::string name;
    std::string path;
    std::string expected;
};

std::string nameOf(const testing::TestParamInfo<PathCase>& row)
{
    return row.param.name;
}

class PathExtensionTest : public testing::TestWithParam<PathCase>
{
};

TEST_P(PathExtensionTest, isWhatFollowsTheLastDotOfTheLastComponent)
{
    EXPECT_EQ(FileURL(GetParam().path).pathExtension(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Paths, PathExtensionTest,
    testing::Values(PathCase{"plain", "/videos/clip.mp4", "mp4"},
        PathCase{"capitals", "/videos/clip.MP4", "MP4"}, PathCase{"none", "/videos/clip", ""},
        PathCase{"two", "/videos/clip.vob.mp4", "mp4"}, PathCase{"trailingDot", "/videos/clip.", ""},
        PathCase{"twoDots", "/videos/clip..txt", "txt"}, PathCase{"dottedFolder", "/videos.txt/clip", ""},
        PathCase{"dottedFolderAndName", "/videos.txt/clip.mov", "mov"},
        PathCase{"dotFile", "/videos/.txt", "txt"},
        PathCase{"blankInside", "/videos/clip.mp4 copy", "mp4 copy"},
        PathCase{"relative", "clip.webm", "webm"}, PathCase{"rawBytes", "/videos/clip.\xFF", "\xFF"},
        PathCase{"onlyADot", "/videos/.", ""}, PathCase{"trailingSlash", "/videos/clip.vob/", "vob"},
        PathCase{"trailingSlashes", "/videos.txt/clip.vob///", "vob"},
        PathCase{"dottedFolderAndTrailingSlash", "/videos.txt/clip/", ""}, PathCase{"root", "/", ""}),
    nameOf);

class AbsoluteStringTest : public testing::TestWithParam<PathCase>
{
};

TEST_P(AbsoluteStringTest, percentEncodesAllButTheUnreservedBytes)
{
    EXPECT_EQ(FileURL(GetParam().path).absoluteString(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Paths, AbsoluteStringTest,
    testing::Values(PathCase{"plain", "/videos/clip.mp4", "file:///videos/clip.mp4"},
        PathCase{"unreserved", "/aZ09-._~", "file:///aZ09-._~"}, PathCase{"blank", "/a b", "file:///a%20b"},
        PathCase{"percent", "/50%", "file:///50%25"}, PathCase{"lineFeed", "/a\nb", "file:///a%0Ab"},
        PathCase{"quotes", "/'\"", "file:///%27%22"}, PathCase{"questionAndHash", "/?#", "file:///%3F%23"},
        PathCase{"colon", "/a:b", "file:///a%3Ab"},
        PathCase{"letterWithAccent", "/\xC3\xA9", "file:///%C3%A9"},
        PathCase{"decomposedLetter", "/e\xCC\x81", "file:///e%CC%81"},
        PathCase{"bytesThatAreNoUtf8", "/\xFF\xFE", "file:///%FF%FE"},
        PathCase{"parentFolderIsKept", "/a/../b", "file:///a/../b"},
        PathCase{"doubleSlashIsKept", "/a//b", "file:///a//b"}),
    nameOf);

TEST(LastPathComponentTest, isTheLastOneThatIsNotEmpty)
{
    const std::pair<const char*, const char*> rows[]
        = {{"/videos/clip.mp4", "clip.mp4"}, {"clip.mp4", "clip.mp4"}, {"/videos/clip.mp4//", "clip.mp4"},
            {"//a", "a"}, {"a/", "a"}, {"/a\xFF/", "a\xFF"}, {"/", ""}, {"//", ""}, {"", ""}};
    for (const auto& [path, component] : rows)
        EXPECT_EQ(lastPathComponent(path), component) << path;
}

TEST(FileURLTest, anAbsolutePathIsKeptByteForByte)
{
    for (const std::string path : {"/a/./b//c/../d.mp4", "/\xFF", "/a b\n", "/link/"})
        EXPECT_EQ(FileURL(path).path(), path);
}

TEST(FileURLTest, aRelativePathIsTakenFromTheCurrentFolder)
{
    const std::string folder = std::filesystem::current_path().string();
    EXPECT_EQ(FileURL("videos/../clip.mp4").path(), folder + "/videos/../clip.mp4");
}

TEST(FileURLTest, samePathsAreEqual)
{
    EXPECT_EQ(FileURL("/a.mp4"), FileURL("/a.mp4"));
    EXPECT_NE(FileURL("/a.mp4"), FileURL("/A.mp4"));
}

TEST(LowerCasedTest, asciiLettersBecomeSmall)
{
    EXPECT_EQ(lowerCased("TxT.AZaz"), "txt.azaz");
}

TEST(LowerCasedTest, otherBytesStay)
{
    EXPECT_EQ(lowerCased("@[`{09 \xC3\x89\xFF"), "@[`{09 \xC3\x89\xFF");
}

} // namespace tarnwell::test
