// SPDX-License-Identifier: MIT
// The boxes of a movie: whether they are all there, and the matrix in a track's header.
#include "tools/TrackMatrix.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/tools/MovieBytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

const DisplayMatrix quarterTurnLeft = {0, -1, 1, 0};

std::string fileType()
{
    return box("ftyp", "isom" + bigEndian(512, 4));
}

std::string numbers(const std::vector<std::int64_t>& values)
{
    std::string bytes;
    for (const auto value : values)
        bytes += bigEndian(static_cast<std::uint64_t>(value) & 0xFFFFFFFFU, 4);
    return bytes;
}

constexpr std::int64_t one = 65536;
constexpr std::int64_t last = 1073741824;

} // namespace

class TrackMatrixTest : public testing::Test
{
protected:
    bool isComplete(const std::string& bytes)
    {
        return opened(bytes, [](int file) { return isCompleteMovie(file); });
    }

    bool writeMatrix(const std::string& bytes, const DisplayMatrix& matrix)
    {
        return opened(bytes, [&matrix](int file) { return writeTrackMatrix(file, matrix); });
    }

    bool isTurned(const std::string& bytes)
    {
        return opened(bytes, [](int file) { return isOnlyTurned(file); });
    }

    /// A movie with these numbers in its own header and in that of its one video track.
    static std::string movieWith(
        int version, const std::vector<std::int64_t>& ofMovie, std::vector<std::int64_t> ofTrack)
    {
        const std::size_t shift = version == 1 ? 12 : 0;
        std::string header = bigEndian(static_cast<std::uint64_t>(version), 1) + std::string(35 + shift, '\0')
            + numbers(ofMovie) + std::string(28, '\0');
        std::string video = track("vide", version);
        video.replace(video.find("tkhd") + 4 + 40 + shift, 36, numbers(ofTrack));
        return fileType() + box("moov", box("mvhd", header) + video + track("soun", 0, 0, 0));
    }

    /// What the last call has left.
    std::string bytes() const { return contentsOf(m_folder.path() + "movie.mp4"); }

private:
    template <typename Action>
    bool opened(const std::string& contents, Action action)
    {
        writeFile(m_folder.path() + "movie.mp4", contents);
        const int file = ::open((m_folder.path() + "movie.mp4").c_str(), O_RDWR);
        EXPECT_GE(file, 0);
        const bool result = action(file);
        ::close(file);
        return result;
    }

    TemporaryDirectory m_folder;
};

using CompleteMovieTest = TrackMatrixTest;

TEST_F(CompleteMovieTest, boxesInAnyOrderAreComplete)
{
    const std::string data = box("mdat", std::string(1000, 'd'));
    const std::string movie = box("moov", track("vide"));
    EXPECT_TRUE(isComplete(smallMovie()));
    EXPECT_TRUE(isComplete(fileType() + movie + data));
    EXPECT_TRUE(isComplete(fileType() + box("free", "") + data + movie + box("udta", "x")));
    EXPECT_TRUE(isComplete(movie));
}

TEST_F(CompleteMovieTest, aLongSizeCounts)
{
    const std::string movie = box("moov", track("vide"));
    EXPECT_TRUE(isComplete(fileType() + longBox("mdat", std::string(1000, 'd')) + movie));
    EXPECT_TRUE(isComplete(fileType() + longBox("mdat", "") + movie));
    EXPECT_TRUE(isComplete(fileType() + longBox("moov", track("vide"))));
}

TEST_F(CompleteMovieTest, aBoxWithoutASizeReachesToTheEnd)
{
    const std::string movie = box("moov", track("vide"));
    EXPECT_TRUE(isComplete(fileType() + movie + bigEndian(0, 4) + "mdat" + std::string(50, 'd')));
    EXPECT_TRUE(isComplete(fileType() + bigEndian(0, 4) + "moov" + track("vide")));
    EXPECT_FALSE(isComplete(fileType() + bigEndian(0, 4) + "mdat" + movie)); // the movie is in the data
}

TEST_F(CompleteMovieTest, withoutAMovieItIsNot)
{
    EXPECT_FALSE(isComplete(""));
    EXPECT_FALSE(isComplete(fileType()));
    EXPECT_FALSE(isComplete(fileType() + box("mdat", "data")));
    EXPECT_FALSE(isComplete(fileType() + box("free", box("moov", track("vide")))));
    EXPECT_FALSE(isComplete("moov"));
    EXPECT_FALSE(isComplete(std::string(5000, '\0')));
    EXPECT_FALSE(isComplete(std::string(5000, '\xFF')));
    EXPECT_FALSE(isComplete("this is a text and no movie, though moov is in it"));
}

TEST_F(CompleteMovieTest, aFileThatEndsEarlyIsNot)
{
    const std::string whole = fileType() + box("moov", track("vide")) + longBox("mdat", std::string(60, 'd'));
    ASSERT_TRUE(isComplete(whole));
    const std::size_t data = whole.size() - 76;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        if (length == data)
            continue; // all boxes so far are there
        EXPECT_FALSE(isComplete(whole.substr(0, length))) << length;
    }
}

TEST_F(CompleteMovieTest, nonsenseSizesAreRefused)
{
    const std::string movie = box("moov", track("vide"));
    for (const std::uint64_t size : {2U, 7U, 1000000U, 0xFFFFFFFFU, 0x80000000U})
        EXPECT_FALSE(isComplete(movie + bigEndian(size, 4) + "mdat" + std::string(100, 'd'))) << size;
    for (const std::uint64_t size : std::vector<std::uint64_t>{
             1, 8, 15, 1000000, 0x7FFFFFFFFFFFFFFF, 0x8000000000000000, 0xFFFFFFFFFFFFFFFF})
        EXPECT_FALSE(
            isComplete(movie + bigEndian(1, 4) + "mdat" + bigEndian(size, 8) + std::string(100, 'd')))
            << size;
}

TEST_F(TrackMatrixTest, theMatrixIsWrittenIntoTheVideosHeaderOnly)
{
    const std::string before = smallMovie();
    ASSERT_TRUE(writeMatrix(before, quarterTurnLeft));
    const std::size_t header = before.find("tkhd") - 4;
    const std::string expected = numbers({0, -one, 0, one, 0, 0, 0, 320 * one, last});
    EXPECT_EQ(matrixIn(bytes(), header), expected);
    std::string rest = before;
    rest.replace(header + 8 + 40, expected.size(), expected);
    EXPECT_EQ(bytes(), rest);
}

TEST_F(TrackMatrixTest, theLongHeaderHasItsMatrixElsewhere)
{
    const std::string before = fileType() + box("moov", track("vide", 1, 640, 360));
    ASSERT_TRUE(writeMatrix(before, {-1, 0, 0, -1}));
    const std::size_t header = before.find("tkhd") - 4;
    const std::string expected = numbers({-one, 0, 0, 0, -one, 0, 640 * one, 360 * one, last});
    EXPECT_EQ(matrixIn(bytes(), header), expected);
    std::string rest = before;
    rest.replace(header + 8 + 52, expected.size(), expected);
    EXPECT_EQ(bytes(), rest);
}

TEST_F(TrackMatrixTest, thePictureIsMovedBackToTheOrigin)
{
    struct Row {
        const char* name;
        DisplayMatrix matrix;
        std::int64_t right;
        std::int64_t down;
    };
    const std::vector<Row> rows = {
        {"as coded", {1, 0, 0, 1}, 0, 0},
        {"a quarter turn to the left", {0, -1, 1, 0}, 0, 320},
        {"a half turn", {-1, 0, 0, -1}, 320, 240},
        {"a quarter turn to the right", {0, 1, -1, 0}, 240, 0},
        {"left and right exchanged", {-1, 0, 0, 1}, 320, 0},
        {"top and bottom exchanged", {1, 0, 0, -1}, 0, 240},
        {"mirrored at the falling diagonal", {0, 1, 1, 0}, 0, 0},
        {"mirrored at the rising diagonal", {0, -1, -1, 0}, 240, 320},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(writeMatrix(smallMovie(), row.matrix));
        EXPECT_EQ(matrixIn(bytes(), bytes().find("tkhd") - 4).substr(24),
            numbers({row.right * one, row.down * one, last}));
    }
}

TEST_F(TrackMatrixTest, everyVideoTrackIsWritten)
{
    const std::string before
        = fileType() + box("moov", track("vide") + track("soun") + track("vide", 1) + track("text"));
    ASSERT_TRUE(writeMatrix(before, quarterTurnLeft));
    const std::string expected = numbers({0, -one, 0, one, 0, 0, 0, 320 * one, last});
    std::vector<bool> written;
    for (auto place = before.find("tkhd"); place != std::string::npos; place = before.find("tkhd", place + 1))
        written.push_back(matrixIn(bytes(), place - 4) == expected);
    EXPECT_EQ(written, std::vector<bool>({true, false, true, false}));
}

TEST_F(TrackMatrixTest, boxesWithLongOrNoSizesAreFound)
{
    const std::string before
        = longBox("mdat", "data") + bigEndian(0, 4) + "moov" + track("soun") + track("vide");
    ASSERT_TRUE(writeMatrix(before, quarterTurnLeft));
    EXPECT_EQ(
        matrixIn(bytes(), before.rfind("tkhd") - 4), numbers({0, -one, 0, one, 0, 0, 0, 320 * one, last}));
}

TEST_F(TrackMatrixTest, aFileWithoutAVideoTrackStaysAsItIs)
{
    const std::string header = trackHeader(0, 320, 240);
    const std::string handler = box("hdlr", bigEndian(0, 8) + "vide" + bigEndian(0, 12));
    const std::vector<std::string> files = {
        "",
        fileType(),
        "no movie",
        fileType() + box("moov", ""),
        fileType() + box("moov", track("soun")),
        fileType() + box("moov", box("trak", header)),
        fileType() + box("moov", box("trak", header + box("mdia", ""))),
        fileType() + box("moov", box("trak", header + box("mdia", box("hdlr", "")))),
        fileType() + box("moov", box("trak", box("mdia", handler))),
        fileType() + box("moov", box("trak", box("tkhd", "") + box("mdia", handler))),
        fileType() + box("moov", box("trak", box("tkhd", header.substr(8, 83)) + box("mdia", handler))),
        track("vide"),
    };
    for (const auto& file : files) {
        EXPECT_FALSE(writeMatrix(file, quarterTurnLeft)) << testing::PrintToString(file);
        EXPECT_EQ(bytes(), file);
    }
}

TEST_F(TrackMatrixTest, quarterTurnsAreOnlyTurned)
{
    const std::vector<std::int64_t> unmoved = {one, 0, 0, 0, one, 0, 0, 0, last};
    for (const int version : {0, 1}) {
        for (const auto& [a, b] : std::vector<std::pair<int, int>>{{1, 0}, {0, 1}, {-1, 0}, {0, -1}})
            EXPECT_TRUE(isTurned(
                movieWith(version, unmoved, {a * one, b * one, 0, -b * one, a * one, 0, 5, 6, last})));
    }
}

TEST_F(TrackMatrixTest, whateverElseIsNotOnlyTurned)
{
    const std::vector<std::int64_t> unmoved = {one, 0, 0, 0, one, 0, 0, 0, last};
    for (const std::vector<std::int64_t>& matrix : std::vector<std::vector<std::int64_t>>{
             {-one, 0, 0, 0, one, 0, 0, 0, last}, {0, one, 0, one, 0, 0, 0, 0, last},
             {2 * one, 0, 0, 0, 2 * one, 0, 0, 0, last}, {0, 0, 0, 0, 0, 0, 0, 0, 0},
             {46341, 46341, 0, -46341, 46341, 0, 0, 0, last}, {one, 1, 0, -1, one, 0, 0, 0, last}}) {
        EXPECT_FALSE(isTurned(movieWith(0, unmoved, matrix))) << testing::PrintToString(matrix);
        EXPECT_FALSE(isTurned(movieWith(1, matrix, unmoved))) << testing::PrintToString(matrix);
    }
    EXPECT_FALSE(isTurned("no movie"));
    EXPECT_FALSE(isTurned(smallMovie())); // its own header is empty
    EXPECT_FALSE(isTurned(fileType() + box("moov", track("vide"))));
    const std::string whole = movieWith(0, unmoved, unmoved);
    for (std::size_t size = 0; size < whole.size() - track("soun", 0, 0, 0).size(); ++size)
        EXPECT_FALSE(isTurned(whole.substr(0, size))) << size;
}

TEST_F(TrackMatrixTest, aHeaderThatIsTooShortForItsVersionIsNotWrittenBeyond)
{
    std::string header = trackHeader(0, 320, 240);
    header[8] = 1; // says that it is the long one
    const std::string handler = box("hdlr", bigEndian(0, 8) + "vide" + bigEndian(0, 12));
    const std::string before = fileType() + box("moov", box("trak", header + box("mdia", handler)));
    EXPECT_FALSE(writeMatrix(before, quarterTurnLeft));
    EXPECT_EQ(bytes(), before);
}

TEST_F(TrackMatrixTest, aMovieWithoutVideoIsNotComplete)
{
    EXPECT_FALSE(isComplete(fileType() + box("moov", box("mvhd", bigEndian(0, 100)))));
    EXPECT_FALSE(isComplete(fileType() + box("moov", track("soun"))));
    EXPECT_TRUE(isComplete(fileType() + box("moov", track("soun") + track("vide"))));
}

TEST_F(TrackMatrixTest, deeplyNestedAndCutFilesDoNoHarm)
{
    std::string nested;
    for (int depth = 0; depth < 2000; ++depth)
        nested = box("moov", nested);
    EXPECT_FALSE(isComplete(nested));
    EXPECT_FALSE(writeMatrix(nested, quarterTurnLeft));
    const std::string whole = smallMovie();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        writeMatrix(whole.substr(0, length), quarterTurnLeft);
        EXPECT_EQ(bytes().size(), length);
    }
}

} // namespace tarnwell::test
