// SPDX-License-Identifier: MIT
#include "tools/Boxes.h"

#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

/// The boxes at the top level, each as "type begin content end"; "invalid" if they do not fill the file.
std::string boxesOf(const std::string& bytes)
{
    const MemoryFile file(bytes);
    const auto boxes = BoxReader(file.descriptor()).boxesOfFile();
    if (!boxes)
        return "invalid";
    std::string text;
    for (const Box& each : *boxes)
        text += std::string(each.type.begin(), each.type.end()) + " " + std::to_string(each.begin) + " "
            + std::to_string(each.content) + " " + std::to_string(each.end) + "\n";
    return text;
}

} // namespace

TEST(BoxesTest, boxesThatFillTheFileAreListed)
{
    EXPECT_EQ(boxesOf(""), "");
    EXPECT_EQ(boxesOf(box("free", "") + box("mdat", "four")), "free 0 8 8\nmdat 8 16 20\n");
    EXPECT_EQ(boxesOf(longBox("mdat", "four") + longBox("free", "")), "mdat 0 16 20\nfree 20 36 36\n");
}

TEST(BoxesTest, aSizeOfZeroReachesToTheEnd)
{
    EXPECT_EQ(boxesOf(box("free", "") + bigEndian(0, 4) + "mdat" + std::string(50, 'd')),
        "free 0 8 8\nmdat 8 16 66\n");
}

TEST(BoxesTest, wrongSizesMakeTheListInvalid)
{
    const std::string data(100, 'd');
    for (const std::uint64_t size : {2U, 7U, 109U, 1000000U, 0x80000000U, 0xFFFFFFFFU})
        EXPECT_EQ(boxesOf(bigEndian(size, 4) + "mdat" + data), "invalid") << size;
    for (const std::uint64_t size : std::vector<std::uint64_t>{
             0, 1, 8, 15, 117, 1000000, 0x7FFFFFFFFFFFFFFF, 0x8000000000000000, 0xFFFFFFFFFFFFFFFF})
        EXPECT_EQ(boxesOf(bigEndian(1, 4) + "mdat" + bigEndian(size, 8) + data), "invalid") << size;
    EXPECT_NE(boxesOf(bigEndian(1, 4) + "mdat" + bigEndian(116, 8) + data), "invalid");
}

TEST(BoxesTest, aFileThatEndsInABoxIsInvalid)
{
    const std::string whole = box("free", "12345") + longBox("mdat", "data");
    const std::size_t first = box("free", "12345").size();
    for (std::size_t size = 1; size < whole.size(); ++size)
        EXPECT_EQ(boxesOf(whole.substr(0, size)) == "invalid", size != first) << size;
}

TEST(BoxesTest, leadingBoxesEndBeforeTheFirstBrokenOne)
{
    const std::string boxes = box("free", "12345") + longBox("mdat", "data");
    for (const std::string& end : {std::string(), std::string("xx"), std::string("\xFF\xFF\xFF\xFFmoov")}) {
        const MemoryFile file(boxes + end);
        const auto found = BoxReader(file.descriptor()).leadingBoxesOfFile();
        ASSERT_EQ(found.size(), 2U);
        EXPECT_TRUE(found[0].is("free") && found[1].is("mdat"));
        EXPECT_EQ(found[1].end, static_cast<FileOffset>(boxes.size()));
    }
    const MemoryFile broken(std::string(12, '\2'));
    EXPECT_TRUE(BoxReader(broken.descriptor()).leadingBoxesOfFile().empty());
}

TEST(BoxesTest, childrenMustNotLeaveTheirParent)
{
    const std::string child = bigEndian(17, 4) + "tkhd" + std::string(8, 'x'); // one byte too many
    const MemoryFile file(box("trak", child) + box("free", "more"));
    BoxReader reader(file.descriptor());
    const auto boxes = reader.boxesOfFile();
    ASSERT_TRUE(boxes);
    EXPECT_FALSE(reader.boxesIn(boxes->front()));
    EXPECT_FALSE(reader.onlyBoxIn(boxes->front(), "tkhd"));
}

TEST(BoxesTest, theContentOfSomeBoxesBeginsBehindOtherFields)
{
    const MemoryFile file(box("meta", bigEndian(0, 4) + box("hdlr", "x")));
    BoxReader reader(file.descriptor());
    const Box meta = reader.boxesOfFile().value().front();
    const auto children = reader.boxesIn(meta, 4);
    ASSERT_TRUE(children);
    EXPECT_TRUE(children->front().is("hdlr"));
    EXPECT_FALSE(reader.boxesIn(meta, meta.contentSize() + 1));
}

TEST(BoxesTest, onlyOneBoxOfATypeIsTaken)
{
    const MemoryFile file(box("moov", box("a   ", "1") + box("b   ", "2") + box("b   ", "3")));
    BoxReader reader(file.descriptor());
    const Box parent = reader.boxesOfFile().value().front();
    EXPECT_TRUE(reader.onlyBoxIn(parent, "a   "));
    EXPECT_FALSE(reader.onlyBoxIn(parent, "b   "));
    EXPECT_FALSE(reader.onlyBoxIn(parent, "c   "));
}

TEST(BoxesTest, contentIsReadWithinItsBox)
{
    const MemoryFile file(box("free", "12345") + box("free", "678"));
    BoxReader reader(file.descriptor());
    const Box first = reader.boxesOfFile().value().front();
    EXPECT_EQ(reader.contentOf(first, 3), "123");
    EXPECT_EQ(reader.contentOf(first, 3, 3), "45");
    EXPECT_EQ(reader.contentOf(first, 3, 5), "");
    EXPECT_EQ(reader.contentOf(first, 3, -1), "");
    EXPECT_EQ(reader.contentOf(first, SIZE_MAX / 2), "12345");
}

TEST(BoxesTest, theNumberOfBoxesIsLimited)
{
    std::string bytes;
    for (std::size_t count = 0; count < BoxReader::mostBoxes; ++count)
        bytes += std::string("\0\0\0\x08"
                             "free",
            8);
    const MemoryFile file(bytes);
    BoxReader reader(file.descriptor());
    const auto boxes = reader.boxesOfFile();
    ASSERT_TRUE(boxes);
    EXPECT_EQ(boxes->size(), BoxReader::mostBoxes);
    EXPECT_TRUE(reader.hasReachedLimit());
    EXPECT_FALSE(reader.boxesOfFile());
}

TEST(BoxesTest, boxesBehindFourGibibytesAreFound)
{
    constexpr std::uint64_t size = 5'000'000'000;
    const std::string end = box("moov", "x");
    const MemoryFile file(bigEndian(1, 4) + "mdat" + bigEndian(size, 8));
    file.writeAt(static_cast<off_t>(size), end);
    const auto boxes = BoxReader(file.descriptor()).boxesOfFile();
    ASSERT_TRUE(boxes);
    EXPECT_EQ(boxes->back().begin, static_cast<FileOffset>(size));
    EXPECT_TRUE(boxes->back().is("moov"));
}

TEST(BoxesTest, aDescriptorThatIsNotOpenHasNoBoxes)
{
    BoxReader reader(-1);
    EXPECT_EQ(reader.fileSize(), 0);
    EXPECT_TRUE(reader.boxesOfFile().value().empty());
}

TEST(BoxesTest, writtenBoxesAreReadAgain)
{
    EXPECT_EQ(readBigEndian(bigEndianBytes(0x123456789AULL, 8)), 0x123456789AULL);
    EXPECT_EQ(bigEndianBytes(258, 2), std::string("\1\2"));
    EXPECT_EQ(boxBytes("free", "content"), box("free", "content"));
}

} // namespace tarnwell::test
