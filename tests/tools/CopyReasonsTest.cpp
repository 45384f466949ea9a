// SPDX-License-Identifier: MIT
// The line on standard error that says why a fix flag is not a copy of the file's bytes.
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"

#include <ostream>
#include <string>

namespace tarnwell::test
{

namespace
{

struct CopyReason {
    const char* name; // of the row
    std::string input;
    std::string reason; // empty for a file that is copied
};

void PrintTo(const CopyReason& row, std::ostream* stream)
{
    *stream << row.name;
}

std::string movieWith(const std::vector<std::int64_t>& matrixOfMovie, const std::string& tracks)
{
    return fileType() + box("moov", movieHeader(0, matrixOfMovie) + tracks) + mediaData;
}

TrackBytes trackWith(const std::vector<std::int64_t>& matrix)
{
    TrackBytes bytes;
    bytes.matrix = matrix;
    return bytes;
}

TrackBytes trackOfVersion(int version)
{
    TrackBytes bytes;
    bytes.version = version;
    return bytes;
}

/// A movie that ends with the track header of its last track, without the last `missing` bytes.
std::string movieEndingInTrackHeader(std::size_t missing)
{
    const std::string media = box("mdia", box("hdlr", bigEndian(0, 8) + "vide" + bigEndian(0, 12)));
    const std::string content = trackHeader({}).substr(8);
    const std::string header = box("tkhd", content.substr(0, content.size() - missing));
    return fileType() + mediaData + movieBox(box("trak", media + header));
}

std::vector<CopyReason> copyReasons()
{
    const auto upright = matrixNine(1, 0, 0, 1);
    const std::string video = track("vide");
    const std::string movie = movieBox(video);
    TrackBytes cover;
    cover.format = "jpeg";
    cover.samples = 1;
    const std::string notFilled = "boxes do not fill the file";
    const std::string noTrackHeader = "a track lacks a handler or a header of a known kind";
    return {
        {"wholeFile", fileType() + movie + mediaData, ""},
        {"trackHeaderAtTheEnd", movieEndingInTrackHeader(0), ""},
        {"matrixAtTheEnd", movieEndingInTrackHeader(8), noTrackHeader},
        {"cutMatrixAtTheEnd", movieEndingInTrackHeader(9), noTrackHeader},
        {"noBoxes", "\x1A\x45\xDF\xA3 a Matroska file", "it is no MP4 file"},
        {"emptyFile", "", "it has no description of the movie, or more than one"},
        {"trailingBytes", fileType() + movie + mediaData + "rest", notFilled},
        {"trailingZeros", fileType() + movie + mediaData + std::string(5, '\0'), notFilled},
        {"cutData", fileType() + movie + mediaData.substr(0, 500), notFilled},
        {"twoMovies", fileType() + movie + mediaData + movie,
            "it has no description of the movie, or more than one"},
        {"twoFileTypes", fileType() + fileType() + movie + mediaData,
            "its file type is too short, too late or there twice"},
        {"bytesInMovie", fileType() + movieBox(video + "rest") + mediaData,
            "boxes do not fill the description of the movie"},
        {"noMovieHeader", fileType() + box("moov", video) + mediaData,
            "the header of the movie is missing or of an unknown kind"},
        {"unknownTrackHeader", fileType() + movieBox(track("vide", trackOfVersion(2))) + mediaData,
            noTrackHeader},
        {"noFileType", movie + mediaData, "it has no file type"},
        {"quickTime", fileType("qt  ") + movie + mediaData, "it is a QuickTime file"},
        {"noMediaData", fileType() + movie, "it has no media data"},
        {"soundOnly", fileType() + movieBox(track("soun")) + mediaData, "it has no video track"},
        {"coverOnly", fileType() + movieBox(track("vide", cover)) + mediaData, "it has no video track"},
        {"scaledMovie", movieWith(matrixNine(2, 0, 0, 2), video),
            "the matrix of the movie is neither a quarter turn nor a mirror"},
        {"stretchedTrack", movieWith(upright, track("vide", trackWith(matrixNine(2, 0, 0, 1)))),
            "its display matrix stretches or skews the picture"},
    };
}

} // namespace

class CopyReasonsTest : public CreatorTest, public testing::WithParamInterface<CopyReason>
{
};

TEST_P(CopyReasonsTest, standardErrorSaysWhyBytesAreNotCopied)
{
    setGoodFfmpeg("say-pid\n");
    setInput(GetParam().input);
    ToolProcess creator(tools.creator(), fixFlag());
    EXPECT_EQ(creator.wait(), 0);
    const std::string beginning = "tarnwell: the file is not copied byte by byte: ";
    const bool isCopied = GetParam().reason.empty();
    EXPECT_EQ(creator.said("pid ").size(), isCopied ? 0U : 1U) << "runs of ffmpeg";
    EXPECT_EQ(creator.said(beginning),
        isCopied ? std::vector<std::string>() : std::vector<std::string>{GetParam().reason})
        << creator.errorText();
}

INSTANTIATE_TEST_SUITE_P(Files, CopyReasonsTest, testing::ValuesIn(copyReasons()),
    [](const testing::TestParamInfo<CopyReason>& row) { return std::string(row.param.name); });

} // namespace tarnwell::test
