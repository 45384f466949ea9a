// SPDX-License-Identifier: MIT
#include "tools/Movie.h"

#include "tests/support/Rows.h"
#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"
#include "tools/Boxes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

std::optional<Movie> movieIn(const std::string& bytes)
{
    const MemoryFile file(bytes);
    return readMovie(file.descriptor());
}

bool isComplete(const std::string& bytes)
{
    const MemoryFile file(bytes);
    return isCompleteMovie(file.descriptor());
}

/// A file with these tracks.
std::string fileOf(const std::string& tracks)
{
    return fileType() + movieBox(tracks) + mediaData;
}

TrackBytes withId(std::uint32_t id)
{
    TrackBytes bytes;
    bytes.id = id;
    return bytes;
}

TrackBytes picture(std::uint32_t id, const std::string& format)
{
    TrackBytes bytes = withId(id);
    bytes.format = format;
    bytes.samples = 1;
    return bytes;
}

} // namespace

struct FileRow {
    const char* name;
    std::string bytes;
};

class CompleteMovieTest : public testing::TestWithParam<FileRow>
{
};

class RefusedMovieTest : public testing::TestWithParam<FileRow>
{
};

TEST_P(CompleteMovieTest, isRead)
{
    EXPECT_TRUE(isComplete(GetParam().bytes));
}

TEST_P(RefusedMovieTest, isNotRead)
{
    EXPECT_FALSE(movieIn(GetParam().bytes));
}

const std::string video = track("vide");
const std::string movie = movieBox(video);
const std::string plainHeader = trackHeader({});
const std::string handler = box("hdlr", bigEndian(0, 8) + "soun" + bigEndian(0, 12));
const std::string media = box("mdia", handler);

/// A file with a video track and another track with this content.
std::string fileWith(const std::string& trackContent)
{
    return fileOf(video + box("trak", trackContent));
}

/// A file with these boxes in its description.
std::string described(const std::string& parts)
{
    return fileType() + box("moov", parts) + mediaData;
}

std::string withByte(std::string bytes, std::size_t place, char value)
{
    bytes[place] = value;
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(Files, CompleteMovieTest,
    testing::Values(FileRow{"smallMovie", smallMovie()}, FileRow{"dataLast", fileOf(video)},
        FileRow{"otherBoxes", fileType() + box("free", "") + mediaData + movie + box("udta", "x")},
        FileRow{"dataWithALongSize", fileType() + longBox("mdat", std::string(1000, 'd')) + movie},
        FileRow{"descriptionWithALongSize", fileType() + longBox("moov", movieHeader() + video)},
        FileRow{"descriptionUpToTheEnd", fileType() + bigEndian(0, 4) + "moov" + movieHeader() + video},
        FileRow{"descriptionOnly", movie}, FileRow{"minimalTrack", fileWith(plainHeader + media)}),
    rowName);

INSTANTIATE_TEST_SUITE_P(Files, RefusedMovieTest,
    testing::Values(FileRow{"empty", ""}, FileRow{"typeOnly", fileType()},
        FileRow{"noDescription", fileType() + mediaData},
        FileRow{"descriptionInAnotherBox", fileType() + box("free", movie)},
        FileRow{"descriptionInTheData", fileType() + bigEndian(0, 4) + "mdat" + movie},
        FileRow{"shortText", "moov"}, FileRow{"zeros", std::string(5000, '\0')},
        FileRow{"ones", std::string(5000, '\xFF')},
        FileRow{"text", "this is a text and no movie, though moov is in it"},
        FileRow{"twoDescriptions", fileOf(video) + movie}, FileRow{"twoTypes", fileType() + fileOf(video)},
        FileRow{"twoMovieHeaders", fileOf(movieHeader() + video)},
        FileRow{"twoTrackHeaders", fileWith(plainHeader + plainHeader + media)},
        FileRow{"twoMediaBoxes", fileWith(plainHeader + media + media)}, FileRow{"emptyTrack", fileWith("")},
        FileRow{"noMedia", fileWith(plainHeader)},
        FileRow{"emptyMedia", fileWith(plainHeader + box("mdia", ""))},
        FileRow{"emptyHandler", fileWith(plainHeader + box("mdia", box("hdlr", "")))},
        FileRow{"shortHandler", fileWith(plainHeader + box("mdia", box("hdlr", bigEndian(0, 11))))},
        FileRow{"noTrackHeader", fileWith(media)},
        FileRow{"emptyTrackHeader", fileWith(box("tkhd", "") + media)},
        FileRow{"shortTrackHeader", fileWith(box("tkhd", plainHeader.substr(8, 83)) + media)},
        FileRow{"restBehindABox", fileWith(plainHeader + media + "x")},
        FileRow{"noMovieHeader", described(video)},
        FileRow{"movieHeaderLast", described(video + movieHeader())},
        FileRow{"shortMovieHeader", described(box("mvhd", movieHeader().substr(8, 60)) + video)},
        FileRow{"movieHeaderOfVersion2", described(withByte(movieHeader(), 8, '\2') + video)},
        FileRow{"movieHeaderOfVersion255", described(withByte(movieHeader(), 8, '\xFF') + video)},
        FileRow{"trackHeaderOfVersion2", fileOf(withByte(video, 16, '\2'))},
        FileRow{"trackHeaderOfVersion255", fileOf(withByte(video, 16, '\xFF'))},
        // The layout of version 0 is 12 bytes shorter.
        FileRow{"headerTooShortForItsVersion", fileOf(withByte(video, 16, '\1'))},
        FileRow{"shortType", box("ftyp", "iso") + movie + mediaData},
        FileRow{"typeLast", movie + mediaData + fileType()}),
    rowName);

TEST(MovieTest, aFileThatEndsEarlyIsRefused)
{
    const std::string whole = fileType() + movieBox(track("vide")) + longBox("mdat", std::string(60, 'd'));
    ASSERT_TRUE(movieIn(whole));
    const std::size_t withoutData = whole.size() - 76;
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(movieIn(whole.substr(0, size)).has_value(), size == withoutData) << size;
}

TEST(MovieTest, theBrandIsTheMajorOne)
{
    const std::string rest = movieBox(track("vide")) + mediaData;
    for (const char* brand : {"isom", "qt  ", "3gp5"})
        EXPECT_EQ(movieIn(fileType(brand) + rest).value().majorBrand, brand);
    EXPECT_EQ(movieIn(rest).value().majorBrand, "");
}

TEST(MovieTest, mediaDataIsLookedForAtTheTopLevel)
{
    EXPECT_TRUE(movieIn(smallMovie()).value().hasMediaData);
    EXPECT_FALSE(movieIn(fileType() + movieBox(track("vide")) + box("free", mediaData)).value().hasMediaData);
}

TEST(MovieTest, theDurationIsInTheHeaderOrThatOfTheFragments)
{
    const auto durationOf
        = [](const std::string& parts) { return movieIn(described(parts)).value().microseconds; };
    const auto unknown = movieHeader().replace(24, 4, "\xFF\xFF\xFF\xFF");
    const auto zero = movieHeader().replace(24, 4, bigEndian(0, 4));
    EXPECT_EQ(durationOf(movieHeader() + video), 4000000);
    EXPECT_EQ(durationOf(movieHeader(1) + video), 4000000);
    EXPECT_EQ(durationOf(unknown + video), 0);
    EXPECT_EQ(durationOf(movieHeader().replace(20, 4, bigEndian(0, 4)) + video), 0); // no time scale
    const std::string version0 = box("mehd", bigEndian(0, 4) + bigEndian(7000, 4));
    const std::string version1 = box("mehd", bigEndian(1, 1) + bigEndian(0, 3) + bigEndian(7000, 8));
    EXPECT_EQ(durationOf(zero + video + box("mvex", version0)), 7000000);
    EXPECT_EQ(durationOf(zero + video + box("mvex", version1)), 7000000);
    EXPECT_EQ(durationOf(zero + video + box("mvex", "")), 0);
}

TEST(MovieTest, videoTracksAreReadWithTheirMatrices)
{
    TrackBytes second = withId(3);
    second.version = 1;
    second.width = 640;
    second.height = 360;
    second.matrix = matrixNine(0, 1, -1, 0, 360, 0);
    const std::string bytes = fileOf(track("vide") + track("soun", {0, 0, 0}) + track("vide", second));
    const auto found = movieIn(bytes);
    ASSERT_TRUE(found);
    ASSERT_EQ(found->videos.size(), 2U);
    const VideoTrack& last = found->videos[1];
    EXPECT_EQ(last.id, 3U);
    EXPECT_EQ(last.width, 640);
    EXPECT_EQ(last.height, 360);
    EXPECT_EQ(last.matrix.b, 1);
    EXPECT_EQ(last.matrix.c, -1);
    EXPECT_EQ(static_cast<std::size_t>(last.matrixOffset), bytes.rfind("tkhd") + 4 + 52);
    EXPECT_EQ(static_cast<std::size_t>(found->videos[0].matrixOffset), bytes.find("tkhd") + 4 + 40);
}

TEST(MovieTest, theMainVideoIsTheFirstWithAFrameRate)
{
    TrackBytes still = withId(1);
    still.sampleDuration = 0;
    EXPECT_EQ(mainVideo(movieIn(fileOf(track("vide", still) + track("vide", withId(2)))).value()).id, 2U);
    EXPECT_EQ(mainVideo(movieIn(fileOf(track("vide", still))).value()).id, 1U);
    const std::string fragmented
        = movieBox(track("vide", still) + track("vide", withId(2)) + box("mvex", ""));
    EXPECT_EQ(mainVideo(movieIn(fileType() + fragmented + mediaData).value()).id, 1U);
}

TEST(MovieTest, theMainVideoIsNoCoverIfAnotherTrackHasAFrameRate)
{
    TrackBytes film = withId(2);
    film.chapters = {1};
    EXPECT_EQ(mainVideo(movieIn(fileOf(track("vide", withId(1)) + track("vide", film))).value()).id, 2U);
    EXPECT_EQ(
        mainVideo(movieIn(fileOf(track("vide", picture(1, "jpeg")) + track("vide", film))).value()).id, 2U);
    film.sampleDuration = 0;
    EXPECT_EQ(mainVideo(movieIn(fileOf(track("vide", withId(1)) + track("vide", film))).value()).id, 1U);
}

TEST(MovieTest, theTagIsThatOfTheFirstTrackWithAFrameRate)
{
    TrackBytes pictures = withId(1);
    pictures.matrix = matrixNine(0, 1, -1, 0);
    TrackBytes film = withId(2);
    film.matrix = matrixNine(-1, 0, 0, -1);
    film.chapters = {1};
    const Orientation shown
        = orientationOf(movieIn(fileOf(track("vide", pictures) + track("vide", film))).value());
    EXPECT_EQ(shown.rotation, 90);
    EXPECT_EQ(shown.decoded.value().a, -1);
}

TEST(MovieTest, aSinglePictureIsACover)
{
    for (const char* format : {"jpeg", "png ", "mp4v"})
        EXPECT_TRUE(movieIn(fileOf(track("vide", picture(1, format)))).value().videos[0].isCover) << format;
    EXPECT_FALSE(movieIn(fileOf(track("vide", picture(1, "hvc1")))).value().videos[0].isCover);
    TrackBytes motionJpeg = picture(1, "jpeg");
    motionJpeg.samples = 100;
    EXPECT_FALSE(movieIn(fileOf(track("vide", motionJpeg))).value().videos[0].isCover);
    const std::string fragmented = movieBox(track("vide", picture(1, "mp4v")) + box("mvex", ""));
    EXPECT_FALSE(movieIn(fileType() + fragmented + mediaData).value().videos[0].isCover);
}

TEST(MovieTest, picturesOfChaptersAreACover)
{
    TrackBytes main = withId(1);
    main.chapters = {2, 3};
    const auto found = movieIn(fileOf(track("vide", main) + track("text", withId(2))
        + track("vide", withId(3)) + track("vide", withId(4))));
    ASSERT_TRUE(found);
    std::vector<bool> covers;
    for (const VideoTrack& each : found->videos)
        covers.push_back(each.isCover);
    EXPECT_EQ(covers, std::vector<bool>({false, true, false}));
}

TEST(MovieTest, aDeeplyNestedFileIsRefused)
{
    std::string nested;
    for (int depth = 0; depth < 2000; ++depth)
        nested = box("moov", nested);
    EXPECT_FALSE(movieIn(nested));
}

TEST(MovieTest, aFileWithMoreBoxesThanAreReadIsRefused)
{
    std::string bytes = fileOf(track("vide"));
    const std::string empty = box("free", "");
    for (std::size_t count = 0; count < BoxReader::mostBoxes; ++count)
        bytes += empty;
    const MemoryFile file(bytes);
    std::string problem;
    EXPECT_FALSE(readMovie(file.descriptor(), problem));
    EXPECT_EQ(problem, "it has more boxes than are read");
}

} // namespace tarnwell::test
