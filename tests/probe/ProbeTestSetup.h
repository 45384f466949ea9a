// SPDX-License-Identifier: MIT
#pragma once

#include "probe/FileProbe.h"
#include "tests/support/FakeTools.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tarnwell::test
{

/// The value that a JSON text spells; fails the test where it spells none.
JSON json(std::string_view text);

/// The entry's text; fails the test where the track has no text under that key.
std::string textOf(const TrackInfo& track, std::string_view key);

/// The value of the container's entry of that label; fails the test where there is none.
std::string metadataOf(const FileProbe& probe, std::string_view label);

/// A file in a folder of its own and a sniffer that reports whatever the test wants it to.
class ProbeTestSetup : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return m_tools.folder() + name; }

    /// The description of a file of that name on which sniffer prints the report.
    FileProbe probeReported(const std::string& report, const std::string& fileName = "clip.mp4");

    /// The same for a report of these streams, in JSON, alone.
    FileProbe probeOfStreams(const std::string& streams)
    {
        return probeReported(R"({"streams": [)" + streams + "]}");
    }

    /// The description that construction gives with sniffer as it is set up.
    FileProbe probe(const std::string& fileName = "clip.mp4");

    FakeTools m_tools;
};

} // namespace tarnwell::test
