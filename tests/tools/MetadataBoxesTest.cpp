// SPDX-License-Identifier: MIT
// The metadata that a new movie keeps from its source.
#include "tools/MetadataBoxes.h"

#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"
#include "tools/Movie.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr std::uint64_t german = 0x10B5; // "deu" in three packed letters of five bits
constexpr std::uint64_t undetermined = 0x55C4; // "und"

struct Dates {
    std::uint64_t created = 0;
    std::uint64_t modified = 0;
    int version = 0; // of the header

    std::string bytes() const
    {
        const int size = version == 1 ? 8 : 4;
        return bigEndian(static_cast<std::uint64_t>(version), 1) + bigEndian(0, 3) + bigEndian(created, size)
            + bigEndian(modified, size);
    }
};

/// The content of "mvhd" or "tkhd" without its last fields.
std::string header(const std::string& type, const Dates& dates, std::uint32_t id = 0)
{
    const int timeSize = dates.version == 1 ? 8 : 4;
    const std::string one = numbers(matrixNine(1, 0, 0, 1));
    if (type == "mvhd")
        return box(type,
            dates.bytes() + bigEndian(1000, 4) + bigEndian(4000, timeSize) + bigEndian(0, 16) + one
                + bigEndian(0, 28));
    return box(type,
        dates.bytes() + bigEndian(id, 4) + bigEndian(0, 4) + bigEndian(4000, timeSize) + bigEndian(0, 16)
            + one + bigEndian(0, 8));
}

struct TrackParts {
    std::uint32_t id = 1;
    Dates dates = {};
    Dates mediaDates = {};
    std::uint64_t language = undetermined;
    std::string inMedia = {};
    std::string more = {};
};

std::string trackOf(const TrackParts& parts)
{
    const int timeSize = parts.mediaDates.version == 1 ? 8 : 4;
    const std::string media = box("mdhd",
        parts.mediaDates.bytes() + bigEndian(1000, 4) + bigEndian(4000, timeSize)
            + bigEndian(parts.language, 2) + bigEndian(0, 2));
    const std::string handler = box("hdlr", bigEndian(0, 8) + "vide" + bigEndian(0, 13));
    return box("trak",
        header("tkhd", parts.dates, parts.id) + box("mdia", media + parts.inMedia + handler) + parts.more);
}

std::string movieOf(const std::string& parts, const Dates& dates = {})
{
    return fileType() + box("mdat", "samples") + box("moov", header("mvhd", dates) + parts);
}

std::string keys(const std::string& content = "keys")
{
    return box("meta", box("hdlr", bigEndian(0, 8) + "mdta" + bigEndian(0, 13)) + box("ilst", content));
}

struct Result {
    MetadataResult result = MetadataResult::NotAdded;
    std::string movie;
};

Result added(const std::string& movie, const std::string& source, MetadataSource how = {})
{
    const MemoryFile movieFile(movie);
    const MemoryFile sourceFile(source);
    how.file = sourceFile.descriptor();
    if (how.trackIds.empty())
        how.trackIds = {1};
    const auto result = addMetadata(movieFile.descriptor(), how);
    return {result, movieFile.contents()};
}

/// The movie after addMetadata with a source whose description has these boxes.
std::string after(const std::string& parts, const std::string& sourceParts, bool isCopy = true)
{
    MetadataSource how;
    how.isCopy = isCopy;
    const Result result = added(movieOf(parts), movieOf(sourceParts), how);
    EXPECT_EQ(result.result, MetadataResult::Added);
    return result.movie;
}

} // namespace

TEST(MetadataBoxesTest, datesAreTakenOverInEveryVersionOfAHeader)
{
    const std::uint64_t late = std::uint64_t(1) << 32U; // exceeds the 32 bits of version 0
    struct Row {
        const char* name;
        Dates source;
        Dates before;
        Dates expected;
    };
    const std::vector<Row> rows = {
        {"both short", {1000, 2000}, {5, 6}, {1000, 2000}},
        {"both long", {late, late + 1, 1}, {5, 6, 1}, {late, late + 1, 1}},
        {"from long to short", {1000, 2000, 1}, {5, 6}, {1000, 2000}},
        {"from short to long", {1000, 2000}, {5, 6, 1}, {1000, 2000, 1}},
        {"too late for the short one", {late, 7, 1}, {5, 6}, {5, 6}},
        {"unknown", {0, 2000}, {5, 6}, {5, 6}},
        {"an unknown version", {1000, 2000, 2}, {5, 6}, {5, 6}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto movie = [](const Dates& dates) { return movieOf(trackOf({1, dates, dates}), dates); };
        EXPECT_EQ(added(movie(row.before), movie(row.source)).movie, movie(row.expected));
    }
}

TEST(MetadataBoxesTest, tracksAreFoundByTheirNumbers)
{
    const std::string source
        = movieOf(trackOf({7, {70, 71}}) + trackOf({8, {80, 81}}) + trackOf({9, {90, 91}}));
    MetadataSource how;
    how.trackIds = {9, 0, 7, 12};
    const auto tracks = [](const std::vector<Dates>& dates) {
        std::string bytes;
        for (std::uint32_t place = 0; place < dates.size(); ++place)
            bytes += trackOf({place + 1, dates[place]});
        return movieOf(bytes);
    };
    EXPECT_EQ(
        added(tracks({{}, {}, {}, {}, {}}), source, how).movie, tracks({{90, 91}, {}, {70, 71}, {}, {}}));
}

TEST(MetadataBoxesTest, theLanguageIsTakenOverWhereTheSourceSaysOne)
{
    const auto movie = [](std::uint64_t language) { return trackOf({1, {}, {}, language}); };
    EXPECT_EQ(after(movie(undetermined), movie(german)), movieOf(movie(german)));
    for (const std::uint64_t none : {undetermined, std::uint64_t(0x7FFF), std::uint64_t(2)})
        EXPECT_EQ(after(movie(german), movie(none)), movieOf(movie(german))) << none;
    const std::string extended = box("elng", bigEndian(0, 4) + std::string("de-CH", 6));
    EXPECT_EQ(after(movie(german), trackOf({1, {}, {}, german, extended})),
        movieOf(trackOf({1, {}, {}, german, extended})));
}

TEST(MetadataBoxesTest, userDataReplacesThatOfFfmpegExceptChapters)
{
    const std::string place = box("\xA9xyz", "place");
    const std::string items = keys("items of ffmpeg");
    const std::string chapters = box("chpl", "chapters");
    const std::string old = trackOf({}) + box("udta", items + box("loci", "place of ffmpeg") + chapters);
    const std::string sourceChapters = box("chpl", "old");
    EXPECT_EQ(after(old, trackOf({}) + box("udta", place + sourceChapters)),
        movieOf(trackOf({}) + box("udta", place + items + chapters)));
    const std::string ownItems = keys("own");
    EXPECT_EQ(after(old, trackOf({}) + box("udta", ownItems + place)),
        movieOf(trackOf({}) + box("udta", ownItems + place + chapters)));
    EXPECT_EQ(after(old, trackOf({})), movieOf(old));
}

TEST(MetadataBoxesTest, userDataMayEndWithZeroBytes)
{
    const std::string place = box("\xA9xyz", "place");
    const std::string source = trackOf({}) + box("udta", place + bigEndian(0, 4));
    EXPECT_EQ(after(trackOf({}), source), movieOf(trackOf({}) + box("udta", place)));
}

TEST(MetadataBoxesTest, keysAreTakenOverInBothForms)
{
    const std::string quickTime = keys();
    const std::string mp4 = box("meta", bigEndian(0, 4) + quickTime.substr(8));
    for (const std::string& meta : {quickTime, mp4}) {
        EXPECT_EQ(after(trackOf({}), trackOf({}) + meta), movieOf(trackOf({}) + meta));
        EXPECT_EQ(after(trackOf({}), trackOf({1, {}, {}, undetermined, {}, meta})),
            movieOf(trackOf({1, {}, {}, undetermined, {}, meta})));
    }
}

TEST(MetadataBoxesTest, metadataElsewhereInTheFileIsNotTakenOver)
{
    const std::string handler = box("hdlr", bigEndian(0, 8) + "pict" + bigEndian(0, 13));
    const std::string meta = box("meta", bigEndian(0, 4) + handler + box("iloc", "offsets in the file"));
    EXPECT_EQ(after(trackOf({}), trackOf({}) + meta + box("udta", meta)), movieOf(trackOf({})));
}

TEST(MetadataBoxesTest, recordsOfTracksAreForCopiesOnly)
{
    const std::string record = box("uuid", "spherical");
    const std::string source = trackOf({1, {}, {}, undetermined, {}, record}) + box("uuid", "vendor");
    EXPECT_EQ(after(trackOf({}), source), movieOf(source));
    EXPECT_EQ(after(trackOf({}), source, false), movieOf(trackOf({}) + box("uuid", "vendor")));
}

TEST(MetadataBoxesTest, userDataOfATrackReplacesThatOfFfmpeg)
{
    const std::string own = box("udta", box("name", "front"));
    const std::string made = box("udta", box("name", "ffmpeg"));
    const auto track = [](const std::string& more) { return trackOf({1, {}, {}, undetermined, {}, more}); };
    EXPECT_EQ(after(track(made), track(own)), movieOf(track(own)));
    EXPECT_EQ(after(track(made), track("")), movieOf(track(made)));
}

TEST(MetadataBoxesTest, tagsOfOtherFilesBecomeKeys)
{
    MetadataSource how;
    how.tags = {{"title", "in ffmpeg's own items"}, {"MAKE", "Maker"}, {"ENCODER", "x"}, {"Lens", "50 mm"},
        {"location", "+48+11/"}, {"empty", ""}, {"long", std::string(70000, 'x')},
        {"com.apple.quicktime.model", "Model"}};
    const auto key = [](const std::string& name) { return box("mdta", name); };
    const auto value = [](int number, const std::string& text) {
        return box(bigEndian(static_cast<std::uint64_t>(number), 4),
            box("data", bigEndian(1, 4) + bigEndian(0, 4) + text));
    };
    const std::string expected = box("meta",
        box("hdlr", bigEndian(0, 8) + "mdta" + bigEndian(0, 13))
            + box("keys",
                bigEndian(0, 4) + bigEndian(4, 4) + key("com.apple.quicktime.make") + key("Lens")
                    + key("com.apple.quicktime.location.ISO6709") + key("com.apple.quicktime.model"))
            + box("ilst", value(1, "Maker") + value(2, "50 mm") + value(3, "+48+11/") + value(4, "Model")));
    EXPECT_EQ(added(movieOf(trackOf({})), "no movie", how).movie, movieOf(trackOf({}) + expected));
    EXPECT_EQ(added(movieOf(trackOf({})), movieOf(trackOf({})), how).movie, movieOf(trackOf({})));
    how.tags.clear();
    EXPECT_EQ(added(movieOf(trackOf({})), "no movie", how).movie, movieOf(trackOf({})));
}

TEST(MetadataBoxesTest, onlyTheDescriptionChangesAndStaysReadable)
{
    const std::string before = smallMovie();
    const std::string source = movieOf(trackOf({}) + box("udta", box("\xA9xyz", "place")), {1000, 2000});
    const MemoryFile movie(before);
    const MemoryFile sourceFile(source);
    ASSERT_EQ(
        addMetadata(movie.descriptor(), {sourceFile.descriptor(), {1}, {}, true}), MetadataResult::Added);
    const std::string result = movie.contents();
    const auto samples = before.find("moov") - 4;
    EXPECT_EQ(result.substr(0, samples), before.substr(0, samples));
    EXPECT_NE(result.find("place"), std::string::npos);
    EXPECT_TRUE(isCompleteMovie(movie.descriptor()));
}

TEST(MetadataBoxesTest, aMovieOfAnotherStructureStaysAsItIs)
{
    const std::string source = movieOf(trackOf({}) + keys());
    const std::string movie = movieOf(trackOf({}));
    for (const std::string& odd : {movie + box("free", "behind"), movie + box("moov", ""),
             movie.substr(0, 60), movie + "x", fileType(), std::string()}) {
        const Result result = added(odd, source);
        EXPECT_EQ(result.result, MetadataResult::NotAdded);
        EXPECT_EQ(result.movie, odd);
    }
}

TEST(MetadataBoxesTest, aBrokenSourceAddsNothing)
{
    const std::string movie = movieOf(trackOf({}));
    const std::string source = movieOf(trackOf({}) + keys(), {1000, 2000});
    for (const std::string& broken :
        {source.substr(0, source.size() - 1), source + box("moov", "x"), movieOf(box("trak", "short")),
            movieOf(box("udta", "\xFF\xFF\xFF\xFFxxxx")), movieOf(box("meta", "xx"))})
        EXPECT_EQ(added(movie, broken).movie, movie);
}

TEST(MetadataBoxesTest, otherBytesMayFollowTheBoxesOfTheSource)
{
    const std::string source = movieOf(trackOf({}) + keys(), {1000, 2000});
    for (const std::string& end : {std::string("xx"), std::string("\xFF\xFF\xFF\xFFmdat")})
        EXPECT_EQ(added(movieOf(trackOf({})), source + end).movie, source);
}

TEST(MetadataBoxesTest, aBoxThatIsTooLargeForMetadataIsLeftOut)
{
    constexpr std::uint64_t large = 80U << 20U;
    const std::string place = box("\xA9xyz", "place");
    const std::string userData
        = bigEndian(8 + large + place.size(), 4) + "udta" + bigEndian(large, 4) + "GPMF";
    const std::string start = fileType() + bigEndian(16 + large + place.size(), 4) + "moov";
    const MemoryFile source(start + userData);
    source.writeAt(static_cast<off_t>(start.size() + 8 + large), place);
    const MemoryFile movie(movieOf(trackOf({})));
    EXPECT_EQ(addMetadata(movie.descriptor(), {source.descriptor(), {1}, {}, true}), MetadataResult::Added);
    EXPECT_EQ(movie.contents(), movieOf(trackOf({}) + box("udta", place)));
}

TEST(MetadataBoxesTest, aMovieThatCannotBeWrittenIsReported)
{
    const MemoryFile movie(movieOf(trackOf({})));
    const MemoryFile source(movieOf(trackOf({}) + keys()));
    const int readOnly
        = ::open(("/proc/self/fd/" + std::to_string(movie.descriptor())).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(readOnly, 0);
    EXPECT_EQ(addMetadata(readOnly, {source.descriptor(), {1}, {}, true}), MetadataResult::WriteFailed);
    ::close(readOnly);
}

} // namespace tarnwell::test
