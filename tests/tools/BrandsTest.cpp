// SPDX-License-Identifier: MIT
// Removal of the brand of Dolby Vision from a transcode.
#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"
#include "tools/MetadataBoxes.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwell::test
{

namespace
{

std::string movieWith(const std::string& brands)
{
    return box("ftyp", brands) + box("mdat", "dby1") + movieBox(track("vide"));
}

/// A movie with these brands after addMetadata with a source that is not a movie.
std::string completed(const std::string& brands, bool isCopy)
{
    const MemoryFile movie(movieWith(brands));
    const MemoryFile source("no movie");
    EXPECT_EQ(addMetadata(movie.descriptor(), {source.descriptor(), {1}, {}, isCopy}), MetadataResult::Added);
    return movie.contents();
}

const std::string made = "isom" + bigEndian(512, 4) + "isomdby1iso2avc1mp41";

} // namespace

TEST(BrandsTest, anEncodingIsNoDolbyVision)
{
    EXPECT_EQ(completed(made, false), movieWith("isom" + bigEndian(512, 4) + "isomisomiso2avc1mp41"));
    EXPECT_EQ(completed("isom" + bigEndian(512, 4) + "isomdby1", false),
        movieWith("isom" + bigEndian(512, 4) + "isomisom"));
}

TEST(BrandsTest, aCopyKeepsTheBrandOfDolbyVision)
{
    EXPECT_EQ(completed(made, true), movieWith(made));
}

TEST(BrandsTest, otherBytesOfTheFileTypeStay)
{
    const std::string version = "isomdby1isom";
    const std::string acrossBrands = "isom" + bigEndian(512, 4) + "isdby1om";
    const std::string cut = "isom" + bigEndian(512, 4) + "isomdby";
    for (const std::string& brands : {version, acrossBrands, cut, std::string()})
        EXPECT_EQ(completed(brands, false), movieWith(brands));
}

} // namespace tarnwell::test
