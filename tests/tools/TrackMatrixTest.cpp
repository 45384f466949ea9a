// SPDX-License-Identifier: MIT
// The display matrices of a fix flag and their offsets.
#include "tools/TrackMatrix.h"

#include "tests/support/Rows.h"
#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"
#include "tests/tools/Orientations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

const std::string shortMediaData = box("mdat", "data");
const DisplayMatrix quarterTurnLeft = {0, -1, 1, 0};

using Nine = std::vector<std::int64_t>;

std::string videoWith(const Nine& matrix)
{
    TrackBytes bytes;
    bytes.matrix = matrix;
    return track("vide", bytes);
}

/// A track whose chapters have the pictures of track 1.
std::string filmWithChapters(const Nine& matrix)
{
    TrackBytes bytes;
    bytes.id = 2;
    bytes.matrix = matrix;
    bytes.chapters = {1};
    return track("vide", bytes);
}

std::string coverTrack()
{
    TrackBytes bytes;
    bytes.format = "jpeg";
    bytes.samples = 1;
    return track("vide", bytes);
}

Nine nineOf(const DisplayMatrix& m)
{
    return matrixNine(m.a, m.b, m.c, m.d);
}

std::string fileOf(const std::string& tracks)
{
    return fileType() + movieBox(tracks) + shortMediaData;
}

/// The file with the flag; empty if ffmpeg must write a new file.
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
        = {{0, 0}, {0, 320}, {320, 240}, {240, 0}, {320, 0}, {0, 240}, {0, 0}, {240, 320}};
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
        const std::string before = fileOf(videoWith(matrixNine(a, b, -b, a)));
        EXPECT_EQ(flaggedMatrix(before, 0), numbers(matrixNine(1, 0, 0, 1)));
        EXPECT_EQ(flaggedMatrix(before, 90), numbers(matrixNine(0, -1, 1, 0, 0, 320)));
        EXPECT_EQ(flaggedMatrix(before, -180), numbers(matrixNine(-1, 0, 0, -1, 320, 240)));
        EXPECT_EQ(flaggedMatrix(before, 630), numbers(matrixNine(0, 1, -1, 0, 240, 0)));
    }
}

TEST(FlagPatchesTest, whatIsShownIsTurnedAndMirrorsAreKept)
{
    for (const auto& row : orientations) {
        const std::string before = fileOf(videoWith(nineOf(row.matrix)));
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

struct FlagRow {
    const char* name;
    std::string tracks;
    double rotation;
    std::vector<Nine> expected; // the matrices of the tracks
};

class FlagMatrixTest : public testing::TestWithParam<FlagRow>
{
};

TEST_P(FlagMatrixTest, isAsStated)
{
    std::vector<std::string> expected;
    for (const Nine& matrix : GetParam().expected)
        expected.push_back(numbers(matrix));
    EXPECT_EQ(matricesIn(flagged(fileOf(GetParam().tracks), GetParam().rotation)), expected);
}

const Nine unturned = matrixNine(1, 0, 0, 1);
const Nine turnedLeftOnce = matrixNine(0, -1, 1, 0, 0, 320);

INSTANTIATE_TEST_SUITE_P(Tracks, FlagMatrixTest,
    testing::Values(
        // The first one has the tag 90: -90 + 90 is a quarter turn to the left.
        FlagRow{"otherVideoTracksAreTurnedAgainstTheirOwnMatrix",
            videoWith(matrixNine(0, 1, -1, 0)) + videoWith(matrixNine(-1, 0, 0, 1)) + track("vide"), 0,
            {unturned, matrixNine(0, 1, 1, 0), turnedLeftOnce}},
        FlagRow{"coversAreKept", track("vide") + coverTrack(), 90, {turnedLeftOnce, unturned}},
        // The tag, 90, is that of the pictures.
        FlagRow{"aFilmBehindItsChapterPicturesIsTurnedFromTheirTag",
            videoWith(matrixNine(0, 1, -1, 0)) + filmWithChapters(matrixNine(1, 0, 0, 1)), 0,
            {matrixNine(0, 1, -1, 0), turnedLeftOnce}},
        FlagRow{"stretchedChapterPicturesAreKept",
            videoWith(matrixNine(2, 0, 0, 1)) + filmWithChapters(matrixNine(1, 0, 0, 1)), 90,
            {matrixNine(2, 0, 0, 1), turnedLeftOnce}},
        FlagRow{"aStretchedFilmBehindItsChapterPicturesNeedsANewFile",
            track("vide") + filmWithChapters(matrixNine(2, 0, 0, 1)), 90, {}},
        FlagRow{"aCoverAloneNeedsANewFile", coverTrack(), 90, {}},
        // sniffer reports no tag for it.
        FlagRow{"aMatrixThatZoomsKeepsItsScale", videoWith(matrixNine(0, 2, -2, 0)), 90,
            {matrixNine(2, 0, 0, 2)}},
        FlagRow{"anEmptyMatrixIsNoTurn", videoWith(Nine(9, 0)), 90, {turnedLeftOnce}},
        FlagRow{"aStretchedPictureNeedsANewFile", videoWith(matrixNine(2, 0, 0, 1)), 90, {}},
        FlagRow{"aSlightlyStretchedPictureNeedsANewFile", videoWith(matrixNine(1, 0, 0, 1.02)), 90, {}},
        FlagRow{"aSkewedPictureNeedsANewFile", videoWith(matrixNine(1, 1, 0, 1)), 90, {}},
        FlagRow{"aLineNeedsANewFile", videoWith(matrixNine(1, 0, 0, 0)), 90, {}}),
    rowName);

TEST(FlagPatchesTest, aTurnByAnyAngleIsTurnedOn)
{
    const std::string before = fileOf(videoWith({46341, 46341, 0, -46341, 46341, 0, 0, 0, lastOne}));
    EXPECT_EQ(flaggedMatrix(before, 90 - 45).substr(0, 24), numbers({46341, -46341, 0, 46341, 46341, 0}));
}

TEST(FlagPatchesTest, theMatrixOfTheMovieHeaderIsIncluded)
{
    for (const auto& ofMovie : orientations) {
        for (const auto& ofTrack : orientations) {
            SCOPED_TRACE(std::string(ofMovie.name) + ", track: " + ofTrack.name);
            const std::string before = fileType()
                + box("moov", movieHeader(1, nineOf(ofMovie.matrix)) + videoWith(nineOf(ofTrack.matrix)))
                + shortMediaData;
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
        EXPECT_EQ(
            flagged(fileType() + box("moov", movieHeader(0, matrix) + track("vide")) + shortMediaData, 90),
            "");
}

TEST(OrientationTest, isWhatDecodersMakeOfTheMatrix)
{
    for (const auto& row : orientations) {
        for (const double scale : {1.0, 2.0}) {
            SCOPED_TRACE(row.name);
            const DisplayMatrix& m = row.matrix;
            const MemoryFile file(
                fileOf(videoWith(matrixNine(m.a * scale, m.b * scale, m.c * scale, m.d * scale))));
            const Orientation orientation = orientationOf(readMovie(file.descriptor()).value());
            EXPECT_EQ(orientation.rotation, scale == 1 ? row.tag : 0);
            ASSERT_TRUE(orientation.decoded);
            EXPECT_EQ(orientation.decoded->a, m.a);
            EXPECT_EQ(orientation.decoded->b, m.b);
        }
    }
    const MemoryFile empty(fileOf(videoWith(Nine(9, 0))));
    EXPECT_FALSE(orientationOf(readMovie(empty.descriptor()).value()).decoded);
}

} // namespace tarnwell::test
