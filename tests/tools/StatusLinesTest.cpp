// SPDX-License-Identifier: MIT
// Status lines from ffmpeg's progress report, and error lines from its messages.
#include "tools/StatusLines.h"

#include "tests/support/Rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr std::size_t longestLine = 4096;

std::string block(const std::string& time)
{
    return "frame=12\nfps=0.00\nout_time_us=" + time
        + "\nout_time_ms=5\nout_time=00:00:09.000000\nspeed=1.5x\nprogress=continue\n";
}

std::string read(const std::string& text)
{
    ProgressReader reader;
    return reader.read(text);
}

std::string errorMessages(const std::string& text)
{
    ErrorMessageReader reader;
    return reader.read(text);
}

std::size_t longestOf(const std::string& lines)
{
    std::size_t longest = 0;
    for (std::size_t begin = 0; begin < lines.size();) {
        const auto end = std::min(lines.find('\n', begin), lines.size());
        longest = std::max(longest, end - begin + 1);
        begin = end + 1;
    }
    return longest;
}

} // namespace

TEST(StatusLineTest, showsHoursMinutesSecondsAndHundredthsRoundedDown)
{
    struct Row {
        std::int64_t microseconds;
        const char* line;
    };
    const std::vector<Row> rows = {
        {0, "time=00:00:00.00\n"},
        {9999, "time=00:00:00.00\n"},
        {10000, "time=00:00:00.01\n"},
        {999999, "time=00:00:00.99\n"},
        {1000000, "time=00:00:01.00\n"},
        {4000000, "time=00:00:04.00\n"},
        {59999999, "time=00:00:59.99\n"},
        {60000000, "time=00:01:00.00\n"},
        {3599999999, "time=00:59:59.99\n"},
        {3600000000, "time=01:00:00.00\n"},
        {3723450000, "time=01:02:03.45\n"},
        {359999990000, "time=99:59:59.99\n"},
        {360000000000, "time=99:59:59.99\n"},
        {std::numeric_limits<std::int64_t>::max(), "time=99:59:59.99\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(statusLine(row.microseconds), row.line) << row.microseconds;
}

struct TextRow {
    const char* name;
    std::string text;
    const char* lines;
};

class ProgressTextTest : public testing::TestWithParam<TextRow>
{
};

class ErrorMessageTextTest : public testing::TestWithParam<TextRow>
{
};

TEST_P(ProgressTextTest, hasTheseStatusLines)
{
    EXPECT_EQ(read(GetParam().text), GetParam().lines);
}

TEST_P(ErrorMessageTextTest, hasTheseErrorLines)
{
    EXPECT_EQ(errorMessages(GetParam().text), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Texts, ProgressTextTest,
    testing::Values(TextRow{"oneBlock", block("3723450000"), "time=01:02:03.45\n"},
        TextRow{"twoBlocks", block("0") + block("500000"), "time=00:00:00.00\ntime=00:00:00.50\n"},
        TextRow{"theLastBlock", "out_time_us=1000000\nprogress=end\n", "time=00:00:01.00\n"},
        TextRow{"aBlockWithoutATime", block("20000") + "frame=3\nprogress=continue\n", "time=00:00:00.02\n"},
        TextRow{"aBlockWithAnUnknownTime", block("20000") + "out_time_us=N/A\nprogress=continue\n",
            "time=00:00:00.02\n"},
        TextRow{"noTimeAtAll", "progress=end\n", ""},
        TextRow{"aLongerKey", "xout_time_us=5000000\nprogress=continue\n", ""},
        TextRow{"aKeyWithASpace", "out_time_us =5000000\nprogress=continue\n", ""},
        TextRow{"otherTimes", "out_time=00:00:05.00\ntime=00:00:05.00\nprogress=continue\n", ""},
        TextRow{
            "twoBytesAtTheEndsOfLines", "out_time_us=1000000\r\nprogress=continue\r\n", "time=00:00:01.00\n"},
        TextRow{"returnsAtTheEndsOfLines", "out_time_us=1000000\rprogress=continue\r", "time=00:00:01.00\n"},
        TextRow{"emptyLines", "\n\n\r\nout_time_us=1000000\n\nprogress=continue\n", "time=00:00:01.00\n"},
        TextRow{"aLineWithoutItsEnd", "out_time_us=1000000\nprogress=continue", ""}),
    rowName);

INSTANTIATE_TEST_SUITE_P(Texts, ErrorMessageTextTest,
    testing::Values(TextRow{"wholeLines", "one\ntwo\n", "one\ntwo\n"},
        TextRow{"emptyLines", "one\r\ntwo\r\n\n", "one\ntwo\n"}, TextRow{"aLineWithoutItsEnd", "half", ""},
        TextRow{"aTimeCode", "time code 01:00:00:00 is wrong\n", "time code 01.00.00:00 is wrong\n"},
        TextRow{"aTimeStamp", "12:34:56.78\n", "12.34:56.78\n"},
        TextRow{"numbersWithColons", "11:22:33:44:55 0:1 1:23:45\n", "11.22.33.44:55 0:1 1:23:45\n"},
        TextRow{"otherBytes", "\x1B[31mred\xC3\xA4\n", "?[31mred??\n"}),
    rowName);

TEST(ProgressReaderTest, otherTimesGiveNoLine)
{
    for (const char* time : {"N/A", "", "-1", "-9223372036854775808", "9223372036854775808",
             "99999999999999999999", "1.5", "12x", " 12", "00:00:01.00", "0x10", "+5", "nan"}) {
        EXPECT_EQ(read(block(time)), "") << time;
        EXPECT_EQ(read(block(time) + block("40000")), "time=00:00:00.04\n") << time;
    }
}

TEST(ProgressReaderTest, aCutAtAnyByteChangesNothing)
{
    const std::string text = block("1000000") + block("N/A") + "out_time_us=2500000\r\nprogress=end\r\n";
    const std::string whole = read(text);
    ASSERT_EQ(whole, "time=00:00:01.00\ntime=00:00:02.50\n");
    for (std::size_t first = 0; first <= text.size(); ++first) {
        ProgressReader reader;
        const std::string begin = reader.read(text.substr(0, first));
        EXPECT_EQ(begin + reader.read(text.substr(first)), whole) << first;
    }
    ProgressReader reader;
    std::string lines;
    for (const char byte : text)
        lines += reader.read(std::string(1, byte));
    EXPECT_EQ(lines, whole);
}

TEST(ProgressReaderTest, aFloodWithoutAnEndOfLineIsDropped)
{
    ProgressReader reader;
    for (int piece = 0; piece < 100; ++piece)
        EXPECT_EQ(reader.read(std::string(65536, 'x')), "");
    EXPECT_EQ(reader.read("\n" + block("1000000")), "time=00:00:01.00\n");
}

TEST(ErrorMessageReaderTest, noLineCanBeTakenForAStatusLine)
{
    for (const std::string text : {"time=00:00:01.00", "title: x time=00:00:99.99 y", "time=time=time=",
             "ttime=ime=", "time=\ttime=", "time=N/A", "out_time=00:00:01", "time==", "titime=me="}) {
        SCOPED_TRACE(text);
        const std::string line = errorMessages(text + "\n");
        EXPECT_EQ(line.find("time="), std::string::npos);
        EXPECT_EQ(line.size(), text.size() + 1);
    }
}

TEST(ErrorMessageReaderTest, aMarkThatIsCutAtAnyByteDoesNotGetThrough)
{
    const std::string text = "a time=00:00:01.00 b\ntime=5\n";
    for (std::size_t first = 0; first <= text.size(); ++first) {
        ErrorMessageReader reader;
        const std::string begin = reader.read(text.substr(0, first));
        EXPECT_EQ(begin + reader.read(text.substr(first)), "a time:00.00:01.00 b\ntime:5\n") << first;
    }
}

TEST(ErrorMessageReaderTest, theSizesOfThePiecesOfALongLineChangeNothing)
{
    const std::string text = std::string(longestLine + 900, 'x') + "end\n";
    ErrorMessageReader reader;
    const std::string begin = reader.read(text.substr(0, longestLine + 400));
    EXPECT_EQ(begin + reader.read(text.substr(longestLine + 400)), errorMessages(text));
}

TEST(ErrorMessageReaderTest, marksInALineOfAnyLengthDoNotGetThrough)
{
    for (std::size_t before = longestLine - 8; before < longestLine + 3; ++before) {
        ErrorMessageReader reader;
        std::string lines = reader.read(std::string(before, 'x') + "time=00:00:01.00");
        lines += reader.read(std::string(3 * longestLine, 'y').append("\n"));
        EXPECT_EQ(lines.find("time="), std::string::npos) << before;
        EXPECT_NE(lines, "");
    }
}

TEST(ErrorMessageReaderTest, onlyPrintableCharactersComeThrough)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    for (const char byte : errorMessages(all + "\n"))
        EXPECT_TRUE((byte >= ' ' && byte <= '~') || byte == '\n') << static_cast<int>(byte);
}

TEST(ErrorMessageReaderTest, aFloodBecomesLinesThatAreWrittenInOnePiece)
{
    constexpr std::size_t pipeBuffer = 4096; // the largest size of an atomic write to a pipe
    ErrorMessageReader reader;
    std::size_t passed = 0;
    std::size_t longest = 0;
    for (int piece = 0; piece < 100; ++piece) {
        const std::string lines = reader.read(std::string(65536, 'x'));
        longest = std::max(longest, longestOf(lines));
        passed += lines.size();
    }
    EXPECT_LE(longest, pipeBuffer);
    EXPECT_GE(passed, 99U * 65536U);
}

} // namespace tarnwell::test
