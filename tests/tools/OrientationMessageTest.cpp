// SPDX-License-Identifier: MIT
// Orientation messages in samples, written byte by byte, and the place of the first sample in a file.
#include "tools/OrientationMessage.h"

#include "tests/support/Rows.h"
#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

namespace tarnwell::test
{

namespace
{

using namespace std::string_literals;

const std::string slice = "\x65 picture"s; // an IDR slice of H.264
const std::string parameters = "\x67 parameters"s;
const std::string quarterTurn
    = "\x2F\x04\x08\x00\x09\x80"s; // type 47, 4 bytes: 16384 of 65536, for one picture

/// Units with lengths of that many bytes before them.
std::string sampleOf(const std::vector<std::string>& units, int lengthSize = 4)
{
    std::string bytes;
    for (const std::string& unit : units)
        bytes += bigEndian(unit.size(), lengthSize) + unit;
    return bytes;
}

std::string sei(const std::string& messages)
{
    return "\x06" + messages + "\x80";
}

struct SampleRow {
    const char* name;
    std::string sample;
    bool hasMessage;
    NalFormat format = {};
};

void PrintTo(const SampleRow& row, std::ostream* stream)
{
    *stream << row.name;
}

class OrientationMessageTest : public testing::TestWithParam<SampleRow>
{
};

TEST_P(OrientationMessageTest, isFoundInFrontOfTheFirstSlice)
{
    EXPECT_EQ(holdsOrientationMessage(GetParam().sample, GetParam().format), GetParam().hasMessage);
}

const std::string longText = "\x05\xFF\x2D" + std::string(300, 't'); // type 5 of 255 + 45 bytes
const std::string hevcParameters = "\x40\x01 parameters"s;

INSTANTIATE_TEST_SUITE_P(Samples, OrientationMessageTest,
    testing::Values(SampleRow{"aTurn", sampleOf({parameters, sei(quarterTurn), slice}), true},
        SampleRow{"aMirror", sampleOf({sei("\x2F\x03\x40\x00\x09"s)}), true},
        SampleRow{
            "behindAnEscapedByte", sampleOf({sei("\x05\x04\x00\x00\x03\x01\x02"s + quarterTurn)}), true},
        SampleRow{"behindALongMessage", sampleOf({sei(longText + quarterTurn)}), true},
        SampleRow{"inASecondUnit", sampleOf({sei(longText), "", sei(quarterTurn)}), true},
        SampleRow{"noMessage", sampleOf({parameters, sei(longText), slice}), false},
        SampleRow{"noTurn", sampleOf({sei("\x2F\x03\x00\x00\x09"s)}), false},
        SampleRow{"aCancel", sampleOf({sei("\x2F\x03\x88\x00\x09"s)}), false},
        SampleRow{"behindASlice", sampleOf({slice, sei(quarterTurn)}), false},
        SampleRow{"theTypeInAText", sampleOf({sei("\x05\x06"s + quarterTurn)}), false},
        SampleRow{"aCutMessage", sampleOf({sei(quarterTurn)}).substr(0, 8), false},
        SampleRow{"aShortMessage", sampleOf({sei("\x2F\x02\x08\x00"s)}), false},
        SampleRow{"aLengthBeyondTheEnd", sampleOf({sei(quarterTurn) + slice}).substr(0, 14), true},
        SampleRow{"anEmptySample", "", false}, SampleRow{"aCutLength", "\x00\x00"s, false},
        SampleRow{"lengthsOfOneByte", sampleOf({parameters, sei(quarterTurn)}, 1), true, {false, 1}},
        SampleRow{"lengthsOfTwoBytes", sampleOf({parameters, sei(quarterTurn)}, 2), true, {false, 2}},
        SampleRow{"hevc", sampleOf({hevcParameters, "\x4E\x01" + quarterTurn + "\x80"}), true, {true, 4}},
        SampleRow{"behindAnHevcSlice", sampleOf({"\x26\x01 slice", "\x4E\x01" + quarterTurn + "\x80"}), false,
            {true, 4}},
        SampleRow{"aSuffixInHevc", sampleOf({"\x50\x01" + quarterTurn + "\x80"}), false, {true, 4}}),
    rowName);

const std::string avcConfiguration = box("avcC", "\x01\x64\x00\x1E\xFF\xE0\x00"s);
const std::string turnedSample = sampleOf({parameters, sei(quarterTurn), slice});

/// A video track of H.264 with the first sample at `offset`; `list` is "stco", "co64" or empty for none.
std::string trackOf(const std::string& list, std::size_t offset, const std::string& configuration)
{
    const auto table = [](const std::string& type, const std::string& entries) {
        return box(type, bigEndian(0, 4) + bigEndian(1, 4) + entries);
    };
    std::string lists = table("stsd", box("avc1", std::string(78, '\0') + configuration))
        + table("stts", numbers({10, 40}));
    if (!list.empty())
        lists += table(list, bigEndian(offset, list == "co64" ? 8 : 4));
    const std::string handler = box("hdlr", bigEndian(0, 8) + "vide" + bigEndian(0, 12));
    return box("trak", trackHeader({}) + box("mdia", handler + box("minf", box("stbl", lists))));
}

/// A file whose media data are that sample.
std::string fileWithSamples(const std::string& list, const std::string& sample = turnedSample,
    const std::string& configuration = avcConfiguration)
{
    const std::string begin = fileType() + box("mdat", sample);
    return begin + movieBox(trackOf(list, begin.size() - sample.size(), configuration));
}

/// A file with the sample in its first fragment. Offsets count from the fragment, or from `base` if that is
/// not 0.
std::string fragmentedFile(std::size_t base, std::uint32_t track = 1)
{
    const std::string begin = fileType() + movieBox(trackOf("", 0, avcConfiguration) + box("mvex", ""));
    const auto fragment = [&](std::size_t size) {
        const std::size_t origin = base == 0 ? begin.size() : base;
        const std::size_t sample = begin.size() + size + 8;
        const std::string header = base == 0 ? bigEndian(0x020000, 4) + bigEndian(track, 4)
                                             : bigEndian(1, 4) + bigEndian(track, 4) + bigEndian(base, 8);
        const std::string run = bigEndian(1, 4) + bigEndian(1, 4) + bigEndian(sample - origin, 4);
        return box("moof", box("traf", box("tfhd", header) + box("trun", run)));
    };
    return begin + fragment(fragment(0).size()) + box("mdat", turnedSample);
}

bool hasMessage(const std::string& bytes)
{
    const MemoryFile file(bytes);
    const auto movie = readMovie(file.descriptor());
    return hasOrientationMessage(file.descriptor(), movie.value());
}

TEST(FirstSampleTest, isFoundByEitherListOfOffsets)
{
    EXPECT_TRUE(hasMessage(fileWithSamples("stco")));
    EXPECT_TRUE(hasMessage(fileWithSamples("co64")));
    EXPECT_FALSE(hasMessage(fileWithSamples("stco", sampleOf({parameters, slice}))));
    EXPECT_FALSE(hasMessage(fileWithSamples("")));
}

TEST(FirstSampleTest, isFoundInAFragment)
{
    EXPECT_TRUE(hasMessage(fragmentedFile(16)));
    EXPECT_TRUE(hasMessage(fragmentedFile(0)));
    EXPECT_FALSE(hasMessage(fragmentedFile(0, 2))) << "of another track";
}

TEST(FirstSampleTest, hasLengthsAsTheSampleEntrySays)
{
    const std::string twoBytes = box("avcC", "\x01\x64\x00\x1E\xFD\xE0\x00"s);
    const std::string sample = sampleOf({parameters, sei(quarterTurn)}, 2);
    EXPECT_TRUE(hasMessage(fileWithSamples("stco", sample, twoBytes)));
    EXPECT_FALSE(hasMessage(fileWithSamples("stco", sample)));
    EXPECT_TRUE(
        hasMessage(fileWithSamples("stco", turnedSample, box("pasp", numbers({1, 1})) + avcConfiguration)));
    EXPECT_TRUE(hasMessage(fileWithSamples("stco", turnedSample, avcConfiguration + bigEndian(0, 4))));
    EXPECT_FALSE(hasMessage(fileWithSamples("stco", turnedSample, box("esds", "another codec"))));
    EXPECT_FALSE(hasMessage(fileWithSamples("stco", turnedSample, box("avcC", "\x01"))));
}

TEST(FirstSampleTest, isMissingBeyondTheEndOfTheFile)
{
    const std::string begin = fileType() + box("mdat", turnedSample);
    for (const std::uint64_t offset : {std::uint64_t(1) << 20U, ~std::uint64_t(0), std::uint64_t(1) << 63U})
        EXPECT_FALSE(hasMessage(begin + movieBox(trackOf("co64", offset, avcConfiguration))));
}

TEST(FirstSampleTest, isThatOfTheFilmBehindItsChapterPictures)
{
    TrackBytes pictures;
    pictures.id = 2;
    const std::string begin = fileType() + box("mdat", turnedSample);
    const std::string references = box("tref", box("chap", bigEndian(pictures.id, 4)));
    const std::string film = trackOf("stco", begin.size() - turnedSample.size(), avcConfiguration);
    const std::string filmWithChapters = box("trak", film.substr(8) + references);
    EXPECT_TRUE(hasMessage(begin + movieBox(track("vide", pictures) + filmWithChapters)));
    EXPECT_FALSE(hasMessage(begin + movieBox(track("vide", pictures) + film)));
}

TEST(FirstSampleTest, isMissingInAMovieWithoutVideo)
{
    EXPECT_FALSE(hasMessage(fileType() + movieBox(track("soun"))));
}

} // namespace

} // namespace tarnwell::test
