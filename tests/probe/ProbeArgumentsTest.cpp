// SPDX-License-Identifier: MIT
#include "probe/FileProbe.h"
#include "tests/probe/ProbeTestSetup.h"
#include "tests/support/Files.h"

namespace tarnwell::test
{

namespace
{

struct NameCase {
    std::string name;
    std::string fileName;
};

std::vector<std::string> expectedArguments(const std::string& path)
{
    return {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
        "-show_error", path};
}

} // namespace

class ProbeArgumentsTest : public ProbeTestSetup, public testing::WithParamInterface<NameCase>
{
};

TEST_P(ProbeArgumentsTest, areNineAndEndWithThePathUnchanged)
{
    const std::string& fileName = GetParam().fileName;
    EXPECT_EQ(probeArguments(fileName), expectedArguments(fileName));
}

TEST_P(ProbeArgumentsTest, reachTheTool)
{
    m_tools.setSniffer("record " + path("arguments") + "\nprint {}");
    const FileProbe description = probe(GetParam().fileName);
    EXPECT_EQ(recordedArguments(path("arguments")), expectedArguments(path(GetParam().fileName)));
    EXPECT_EQ(description.fileFullPath, path(GetParam().fileName));
}

INSTANTIATE_TEST_SUITE_P(Names, ProbeArgumentsTest,
    testing::Values(NameCase{"plain", "clip.mp4"}, NameCase{"blank", "my clip .mp4"},
        NameCase{"doubleQuote", "a\"b.mp4"}, NameCase{"singleQuote", "a'b.mp4"},
        NameCase{"lineFeed", "a\nb.mp4"}, NameCase{"percent", "%d%04d%s.mp4"},
        NameCase{"colon", "http:x:y.mp4"}, NameCase{"leadingDash", "-show_error"},
        NameCase{"dollarAndBackquote", "$(ls)`ls`.mp4"}, NameCase{"backslash", "a\\b.mp4"},
        NameCase{"asterisk", "[a]*?.mp4"}, NameCase{"accent", "caf\xC3\xA9.mp4"},
        NameCase{"decomposedAccent", "cafe\xCC\x81.mp4"}, NameCase{"film", "\xF0\x9F\x8E\xAC.mp4"},
        NameCase{"bytesThatAreNoUtf8", "\xFF\xFE\x80.mp4"}),
    [](const auto& row) { return row.param.name; });

} // namespace tarnwell::test
