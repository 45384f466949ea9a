// SPDX-License-Identifier: MIT
#include "tools/Movie.h"

#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"

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

const std::string data = box("mdat", std::string(1000, 'd'));

/// A file whose tracks are these.
std::string fileOf(const std::string& tracks)
{
    return fileType() + movieBox(tracks) + data;
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

TEST(MovieTest, boxesInAnyOrderAreComplete)
{
    const std::string movie = movieBox(track("vide"));
    EXPECT_TRUE(isComplete(smallMovie()));
    EXPECT_TRUE(isComplete(fileType() + movie + data));
    EXPECT_TRUE(isComplete(fileType() + box("free", "") + data + movie + box("udta", "x")));
    EXPECT_TRUE(isComplete(fileType() + longBox("mdat", std::string(1000, 'd')) + movie));
    EXPECT_TRUE(isComplete(fileType() + longBox("moov", movieHeader() + track("vide"))));
    EXPECT_TRUE(isComplete(fileType() + bigEndian(0, 4) + "moov" + movieHeader() + track("vide")));
    EXPECT_TRUE(isComplete(movie));
}

TEST(MovieTest, aFileWithoutADescriptionIsNone)
{
    EXPECT_FALSE(movieIn(""));
    EXPECT_FALSE(movieIn(fileType()));
    EXPECT_FALSE(movieIn(fileType() + data));
    EXPECT_FALSE(movieIn(fileType() + box("free", movieBox(track("vide")))));
    EXPECT_FALSE(movieIn(fileType() + bigEndian(0, 4) + "mdat" + movieBox(track("vide"))));
    EXPECT_FALSE(movieIn("moov"));
    EXPECT_FALSE(movieIn(std::string(5000, '\0')));
    EXPECT_FALSE(movieIn(std::string(5000, '\xFF')));
    EXPECT_FALSE(movieIn("this is a text and no movie, though moov is in it"));
}

TEST(MovieTest, aFileThatEndsEarlyIsNone)
{
    const std::string whole = fileType() + movieBox(track("vide")) + longBox("mdat", std::string(60, 'd'));
    ASSERT_TRUE(movieIn(whole));
    const std::size_t withoutData = whole.size() - 76;
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(movieIn(whole.substr(0, size)).has_value(), size == withoutData) << size;
}

TEST(MovieTest, whatOccursTwiceIsRefused)
{
    const std::string video = track("vide");
    EXPECT_FALSE(movieIn(fileOf(video) + movieBox(video)));
    EXPECT_FALSE(movieIn(fileType() + fileOf(video)));
    EXPECT_FALSE(movieIn(fileOf(movieHeader() + video)));
    const std::string media = box("mdia", box("hdlr", bigEndian(0, 8) + "vide" + bigEndian(0, 12)));
    const std::string header = trackHeader({});
    EXPECT_TRUE(movieIn(fileOf(box("trak", header + media))));
    EXPECT_FALSE(movieIn(fileOf(box("trak", header + header + media))));
    EXPECT_FALSE(movieIn(fileOf(box("trak", header + media + media))));
}

TEST(MovieTest, tracksWithoutAHeaderOrAHandlerAreRefused)
{
    const std::string header = trackHeader({});
    const std::string handler = box("hdlr", bigEndian(0, 8) + "soun" + bigEndian(0, 12));
    for (const std::string& content : {std::string(), header, header + box("mdia", ""),
             header + box("mdia", box("hdlr", "")), header + box("mdia", box("hdlr", bigEndian(0, 11))),
             box("mdia", handler), box("tkhd", "") + box("mdia", handler),
             box("tkhd", header.substr(8, 83)) + box("mdia", handler), header + box("mdia", handler) + "x"})
        EXPECT_FALSE(movieIn(fileOf(track("vide") + box("trak", content))))
            << testing::PrintToString(content);
    EXPECT_TRUE(movieIn(fileOf(track("vide") + box("trak", header + box("mdia", handler)))));
}

TEST(MovieTest, aMovieHeaderMustComeBeforeTheTracks)
{
    EXPECT_FALSE(movieIn(fileType() + box("moov", track("vide")) + data));
    EXPECT_FALSE(movieIn(fileType() + box("moov", track("vide") + movieHeader()) + data));
    EXPECT_FALSE(
        movieIn(fileType() + box("moov", box("mvhd", movieHeader().substr(8, 60)) + track("vide")) + data));
}

TEST(MovieTest, headersOfUnknownVersionsAreRefused)
{
    for (const char version : {'\2', '\xFF'}) {
        std::string header = movieHeader();
        header[8] = version;
        EXPECT_FALSE(movieIn(fileType() + box("moov", header + track("vide")) + data));
        std::string video = track("vide");
        video[16] = version;
        EXPECT_FALSE(movieIn(fileOf(video)));
    }
}

TEST(MovieTest, aHeaderThatIsTooShortForItsVersionIsRefused)
{
    std::string video = track("vide");
    ASSERT_TRUE(movieIn(fileOf(video)));
    video[16] = 1; // the layout of version 0 is 12 bytes shorter
    EXPECT_FALSE(movieIn(fileOf(video)));
}

TEST(MovieTest, theBrandIsTheMajorOne)
{
    const std::string rest = movieBox(track("vide")) + data;
    for (const char* brand : {"isom", "qt  ", "3gp5"})
        EXPECT_EQ(movieIn(fileType(brand) + rest).value().majorBrand, brand);
    EXPECT_EQ(movieIn(rest).value().majorBrand, "");
    EXPECT_FALSE(movieIn(box("ftyp", "iso") + rest));
    EXPECT_FALSE(movieIn(rest + fileType()));
}

TEST(MovieTest, mediaDataIsLookedForAtTheTopLevel)
{
    EXPECT_TRUE(movieIn(smallMovie()).value().hasMediaData);
    EXPECT_FALSE(movieIn(fileType() + movieBox(track("vide")) + box("free", data)).value().hasMediaData);
}

TEST(MovieTest, theDurationIsThatOfTheHeader)
{
    EXPECT_EQ(movieIn(smallMovie()).value().microseconds, 4000000);
    EXPECT_EQ(
        movieIn(fileType() + box("moov", movieHeader(1) + track("vide"))).value().microseconds, 4000000);
    std::string header = movieHeader();
    header.replace(24, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(movieIn(fileType() + box("moov", header + track("vide"))).value().microseconds, 0);
    header.replace(20, 4, bigEndian(0, 4)); // no time scale
    EXPECT_EQ(movieIn(fileType() + box("moov", header + track("vide"))).value().microseconds, 0);
}

TEST(MovieTest, aFragmentedFileHasItsDurationElsewhere)
{
    std::string header = movieHeader();
    header.replace(24, 4, bigEndian(0, 4));
    const auto durationWith = [&](const std::string& fragments) {
        return movieIn(fileType() + box("moov", header + track("vide") + box("mvex", fragments)))
            .value()
            .microseconds;
    };
    EXPECT_EQ(durationWith(box("mehd", bigEndian(0, 4) + bigEndian(7000, 4))), 7000000);
    EXPECT_EQ(durationWith(box("mehd", bigEndian(1, 1) + bigEndian(0, 3) + bigEndian(7000, 8))), 7000000);
    EXPECT_EQ(durationWith(""), 0);
}

TEST(MovieTest, videoTracksAreReadWithTheirMatrices)
{
    TrackBytes second = withId(3);
    second.version = 1;
    second.width = 640;
    second.height = 360;
    second.matrix = matrixNine(0, 1, -1, 0, 360, 0);
    const std::string bytes = fileOf(track("vide") + track("soun", {0, 0, 0}) + track("vide", second));
    const auto movie = movieIn(bytes);
    ASSERT_TRUE(movie);
    ASSERT_EQ(movie->videos.size(), 2U);
    const VideoTrack& video = movie->videos[1];
    EXPECT_EQ(video.id, 3U);
    EXPECT_EQ(video.width, 640);
    EXPECT_EQ(video.height, 360);
    EXPECT_EQ(video.matrix.b, 1);
    EXPECT_EQ(video.matrix.c, -1);
    EXPECT_EQ(static_cast<std::size_t>(video.matrixOffset), bytes.rfind("tkhd") + 4 + 52);
    EXPECT_EQ(static_cast<std::size_t>(movie->videos[0].matrixOffset), bytes.find("tkhd") + 4 + 40);
}

TEST(MovieTest, theMainVideoIsTheFirstWithAFrameRate)
{
    TrackBytes still = withId(1);
    still.sampleDuration = 0;
    EXPECT_EQ(mainVideo(movieIn(fileOf(track("vide", still) + track("vide", withId(2)))).value()).id, 2U);
    EXPECT_EQ(mainVideo(movieIn(fileOf(track("vide", still))).value()).id, 1U);
    const std::string fragmented
        = movieBox(track("vide", still) + track("vide", withId(2)) + box("mvex", ""));
    EXPECT_EQ(mainVideo(movieIn(fileType() + fragmented + data).value()).id, 1U);
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
    EXPECT_FALSE(movieIn(fileType() + fragmented + data).value().videos[0].isCover);
}

TEST(MovieTest, picturesOfChaptersAreACover)
{
    TrackBytes main = withId(1);
    main.chapters = {2, 3};
    const auto movie = movieIn(fileOf(track("vide", main) + track("text", withId(2))
        + track("vide", withId(3)) + track("vide", withId(4))));
    ASSERT_TRUE(movie);
    std::vector<bool> covers;
    for (const VideoTrack& video : movie->videos)
        covers.push_back(video.isCover);
    EXPECT_EQ(covers, std::vector<bool>({false, true, false}));
}

TEST(MovieTest, deeplyNestedFilesDoNoHarm)
{
    std::string nested;
    for (int depth = 0; depth < 2000; ++depth)
        nested = box("moov", nested);
    EXPECT_FALSE(movieIn(nested));
}

} // namespace tarnwell::test
