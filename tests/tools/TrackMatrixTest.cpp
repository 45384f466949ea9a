// SPDX-License-Identifier: MIT
// The display matrices that a flag asks for, and where they are written.
#include "tools/TrackMatrix.h"

#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

const std::string data = box("mdat", "data");
const DisplayMatrix quarterTurnLeft = {0, -1, 1, 0};

using Nine = std::vector<std::int64_t>;

struct Row {
    const char* name;
    DisplayMatrix matrix;
    int tag; // as sniffer reports it
};

const std::vector<Row> orientations = {
    {"as coded", {1, 0, 0, 1}, 0},
    {"a quarter turn to the right", {0, 1, -1, 0}, 90},
    {"a half turn", {-1, 0, 0, -1}, 180},
    {"a quarter turn to the left", {0, -1, 1, 0}, 270},
    {"top and bottom exchanged", {1, 0, 0, -1}, 0},
    {"left and right exchanged", {-1, 0, 0, 1}, 180},
    {"mirrored at the falling diagonal", {0, 1, 1, 0}, 90},
    {"mirrored at the rising diagonal", {0, -1, -1, 0}, 270},
};

TrackBytes withMatrix(const Nine& matrix)
{
    TrackBytes bytes;
    bytes.matrix = matrix;
    return bytes;
}

Nine nineOf(const DisplayMatrix& m)
{
    return matrixNine(m.a, m.b, m.c, m.d);
}

std::string fileOf(const std::string& tracks)
{
    return fileType() + movieBox(tracks) + data;
}

/// The file with the flag; empty where it needs a new one.
std::string flagged(const std::string& bytes, double rotation)
{
    const MemoryFile file(bytes);
    const auto movie = readMovie(file.descriptor());
    const auto patches = movie ? patchesOfFlag(*movie, rotation) : std::nullopt;
    if (!patches || !applyPatches(file.descriptor(), *patches))
        return {};
    return file.contents();
}

/// The matrices of all tracks, in their order.
std::vector<std::string> matricesIn(const std::string& bytes)
{
    std::vector<std::string> matrices;
    for (auto place = bytes.find("tkhd"); place != std::string::npos; place = bytes.find("tkhd", place + 1))
        matrices.push_back(matrixIn(bytes, place - 4));
    return matrices;
}

std::string flaggedMatrix(const std::string& bytes, double rotation)
{
    const auto matrices = matricesIn(flagged(bytes, rotation));
    return matrices.empty() ? "" : matrices.front();
}

bool writeMatrix(const MemoryFile& file, const DisplayMatrix& matrix)
{
    return writeTrackMatrix(file.descriptor(), matrix);
}

} // namespace

TEST(TrackMatrixTest, theMatrixIsWrittenIntoTheVideosHeaderOnly)
{
    for (const int version : {0, 1}) {
        TrackBytes bytes = {version, 320, 240};
        const std::string before = fileOf(track("vide", bytes) + track("soun", {version, 0, 0}));
        const MemoryFile file(before);
        ASSERT_TRUE(writeMatrix(file, quarterTurnLeft));
        const std::string expected = numbers(matrixNine(0, -1, 1, 0, 0, 320));
        std::string rest = before;
        rest.replace(before.find("tkhd") + 4 + (version == 1 ? 52 : 40), 36, expected);
        EXPECT_EQ(file.contents(), rest);
    }
}

TEST(TrackMatrixTest, thePictureIsMovedBackToTheOrigin)
{
    struct Place {
        int right;
        int down;
    };
    const std::vector<Place> places
        = {{0, 0}, {240, 0}, {320, 240}, {0, 320}, {0, 240}, {320, 0}, {0, 0}, {240, 320}};
    for (std::size_t row = 0; row < orientations.size(); ++row) {
        SCOPED_TRACE(orientations[row].name);
        const MemoryFile file(smallMovie());
        ASSERT_TRUE(writeMatrix(file, orientations[row].matrix));
        EXPECT_EQ(matricesIn(file.contents()).front().substr(24),
            numbers({places[row].right * matrixOne, places[row].down * matrixOne, lastOne}));
    }
}

TEST(TrackMatrixTest, everyVideoTrackIsWritten)
{
    const MemoryFile file(fileOf(track("vide") + track("soun") + track("vide", {1}) + track("text")));
    ASSERT_TRUE(writeMatrix(file, quarterTurnLeft));
    const std::string expected = numbers(matrixNine(0, -1, 1, 0, 0, 320));
    std::vector<bool> written;
    for (const auto& matrix : matricesIn(file.contents()))
        written.push_back(matrix == expected);
    EXPECT_EQ(written, std::vector<bool>({true, false, true, false}));
}

TEST(TrackMatrixTest, aFileWithoutAVideoTrackStaysAsItIs)
{
    for (const auto& bytes : std::vector<std::string>{"", fileType(), "no movie", fileOf(""),
             fileOf(track("soun")), fileOf(box("trak", trackHeader({}))), track("vide")}) {
        const MemoryFile file(bytes);
        EXPECT_FALSE(writeMatrix(file, quarterTurnLeft));
        EXPECT_EQ(file.contents(), bytes);
    }
}

TEST(FlagPatchesTest, aFlagTurnsAgainstTheCodedPicture)
{
    for (const auto& [a, b] : std::vector<std::pair<int, int>>{{1, 0}, {0, 1}, {-1, 0}, {0, -1}}) {
        const std::string before = fileOf(track("vide", withMatrix(matrixNine(a, b, -b, a))));
        EXPECT_EQ(flaggedMatrix(before, 0), numbers(matrixNine(1, 0, 0, 1)));
        EXPECT_EQ(flaggedMatrix(before, 90), numbers(matrixNine(0, -1, 1, 0, 0, 320)));
        EXPECT_EQ(flaggedMatrix(before, -180), numbers(matrixNine(-1, 0, 0, -1, 320, 240)));
        EXPECT_EQ(flaggedMatrix(before, 630), numbers(matrixNine(0, 1, -1, 0, 240, 0)));
    }
}

TEST(FlagPatchesTest, nothingButTheMatricesChanges)
{
    const std::string before = fileOf(track("soun") + track("vide") + track("text") + track("vide", {1}));
    const std::string after = flagged(before, 90);
    ASSERT_EQ(after.size(), before.size());
    std::string restored = after;
    for (const auto place : {before.find("tkhd", before.find("tkhd") + 1), before.rfind("tkhd")}) {
        const std::size_t matrix = place + 4 + (before[place + 4] == 1 ? 52 : 40);
        EXPECT_NE(after.substr(matrix, 36), before.substr(matrix, 36));
        restored.replace(matrix, 36, before.substr(matrix, 36));
    }
    EXPECT_EQ(restored, before);
}

TEST(FlagPatchesTest, whatIsShownIsTurnedAndMirrorsAreKept)
{
    for (const auto& row : orientations) {
        const std::string before = fileOf(track("vide", withMatrix(nineOf(row.matrix))));
        for (int quarters = 0; quarters < 4; ++quarters) {
            SCOPED_TRACE(std::string(row.name) + ", quarter turns: " + std::to_string(quarters));
            const DisplayMatrix expected = combined(row.matrix, turnedLeft(90 * quarters));
            const auto rounded = nineOf({std::round(expected.a), std::round(expected.b),
                std::round(expected.c), std::round(expected.d)});
            EXPECT_EQ(
                flaggedMatrix(before, 90 * quarters - row.tag).substr(0, 24), numbers(rounded).substr(0, 24));
        }
    }
}

TEST(FlagPatchesTest, otherVideoTracksAreTurnedAgainstTheirOwnMatrix)
{
    const std::string before = fileOf(track("vide", withMatrix(matrixNine(0, 1, -1, 0)))
        + track("vide", withMatrix(matrixNine(-1, 0, 0, 1))) + track("vide"));
    // The first one has the tag 90: a quarter turn to the left is -90 + 90.
    EXPECT_EQ(matricesIn(flagged(before, 0)),
        std::vector<std::string>({numbers(matrixNine(1, 0, 0, 1)), numbers(matrixNine(0, 1, 1, 0)),
            numbers(matrixNine(0, -1, 1, 0, 0, 320))}));
}

TEST(FlagPatchesTest, coversStayAsTheyAre)
{
    TrackBytes cover;
    cover.format = "jpeg";
    cover.samples = 1;
    const auto matrices = matricesIn(flagged(fileOf(track("vide") + track("vide", cover)), 90));
    ASSERT_EQ(matrices.size(), 2U);
    EXPECT_EQ(matrices[0], numbers(matrixNine(0, -1, 1, 0, 0, 320)));
    EXPECT_EQ(matrices[1], numbers(matrixNine(1, 0, 0, 1)));
    EXPECT_EQ(flagged(fileOf(track("vide", cover)), 90), "");
}

TEST(FlagPatchesTest, aMatrixThatZoomsKeepsItsScale)
{
    const std::string before = fileOf(track("vide", withMatrix(matrixNine(0, 2, -2, 0))));
    EXPECT_EQ(flaggedMatrix(before, 90), numbers(matrixNine(2, 0, 0, 2))); // it has no tag
}

TEST(FlagPatchesTest, anEmptyMatrixCountsAsNoTurn)
{
    const std::string before = fileOf(track("vide", withMatrix(Nine(9, 0))));
    EXPECT_EQ(flaggedMatrix(before, 90), numbers(matrixNine(0, -1, 1, 0, 0, 320)));
}

TEST(FlagPatchesTest, aTurnByAnyAngleIsTurnedOn)
{
    const std::string before
        = fileOf(track("vide", withMatrix({46341, 46341, 0, -46341, 46341, 0, 0, 0, lastOne})));
    EXPECT_EQ(flaggedMatrix(before, 90 - 45).substr(0, 24), numbers({46341, -46341, 0, 46341, 46341, 0}));
}

TEST(FlagPatchesTest, stretchedAndSkewedPicturesNeedANewFile)
{
    for (const Nine& matrix :
        {matrixNine(2, 0, 0, 1), matrixNine(1, 1, 0, 1), matrixNine(1, 0, 0, 0), matrixNine(1, 0, 0, 1.02)})
        EXPECT_EQ(flagged(fileOf(track("vide", withMatrix(matrix))), 90), "")
            << testing::PrintToString(matrix);
}

TEST(FlagPatchesTest, theMovieHeadersMatrixIsReckonedWith)
{
    for (const auto& ofMovie : orientations) {
        for (const auto& ofTrack : orientations) {
            SCOPED_TRACE(std::string(ofMovie.name) + ", track: " + ofTrack.name);
            const std::string before = fileType()
                + box("moov",
                    movieHeader(1, nineOf(ofMovie.matrix))
                        + track("vide", withMatrix(nineOf(ofTrack.matrix))))
                + data;
            const DisplayMatrix shown = combined(ofTrack.matrix, ofMovie.matrix);
            const MemoryFile file(flagged(before, 90 - rotationTag(shown)));
            const auto movie = readMovie(file.descriptor());
            ASSERT_TRUE(movie);
            const DisplayMatrix now = combined(mainVideo(*movie).matrix, movie->matrix);
            const DisplayMatrix expected = combined(shown, turnedLeft(90));
            constexpr double rounding = 1e-9;
            EXPECT_NEAR(now.a, expected.a, rounding);
            EXPECT_NEAR(now.b, expected.b, rounding);
            EXPECT_NEAR(now.c, expected.c, rounding);
            EXPECT_NEAR(now.d, expected.d, rounding);
        }
    }
    for (const Nine& matrix :
        {Nine(9, 0), matrixNine(2, 0, 0, 2), Nine{matrixOne, 0, 0, 38, matrixOne, 0, 0, 0, lastOne}})
        EXPECT_EQ(flagged(fileType() + box("moov", movieHeader(0, matrix) + track("vide")) + data, 90), "");
}

TEST(FlagPatchesTest, otherFilesNeedANewFile)
{
    const std::string movie = movieBox(track("vide"));
    ASSERT_NE(flagged(fileType("mp42") + movie + data, 90), "");
    EXPECT_EQ(flagged(fileType("qt  ") + movie + data, 90), "");
    EXPECT_EQ(flagged(movie + data, 90), "");
    EXPECT_EQ(flagged(fileType() + movie, 90), "");
    EXPECT_EQ(flagged(fileType() + movieBox(track("soun")) + data, 90), "");
}

TEST(OrientationTest, isWhatDecodersMakeOfTheMatrix)
{
    for (const auto& row : orientations) {
        for (const double scale : {1.0, 2.0}) {
            SCOPED_TRACE(row.name);
            const DisplayMatrix& m = row.matrix;
            const MemoryFile file(fileOf(
                track("vide", withMatrix(matrixNine(m.a * scale, m.b * scale, m.c * scale, m.d * scale)))));
            const Orientation orientation = orientationOf(readMovie(file.descriptor()).value());
            EXPECT_EQ(orientation.rotation, scale == 1 ? row.tag : 0);
            ASSERT_TRUE(orientation.decoded);
            EXPECT_EQ(orientation.decoded->a, m.a);
            EXPECT_EQ(orientation.decoded->b, m.b);
        }
    }
    const MemoryFile empty(fileOf(track("vide", withMatrix(Nine(9, 0)))));
    EXPECT_FALSE(orientationOf(readMovie(empty.descriptor()).value()).decoded);
}

} // namespace tarnwell::test
