// SPDX-License-Identifier: MIT
#pragma once

#include "probe/FileProbe.h"
#include "tests/support/FakeTools.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tarnwell::test
{

/// Parses a JSON text. Fails the test if the text is invalid.
JSON json(std::string_view text);

/// Returns the text under `key`. Fails the test if there is none.
std::string textOf(const TrackInfo& track, std::string_view key);

/// Returns the value of the metadata entry `label`. Fails the test if there is none.
std::string metadataOf(const FileProbe& probe, std::string_view label);

/// A temporary folder with a fake sniffer whose report the test sets.
class ProbeTestSetup : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return m_tools.folder() + name; }

    /// Creates the file and probes it with a sniffer that prints `report`.
    FileProbe probeReported(const std::string& report, const std::string& fileName = "clip.mp4");

    /// The same for a report with these streams (JSON objects, comma-separated) and no "format".
    FileProbe probeOfStreams(const std::string& streams)
    {
        return probeReported(R"({"streams": [)" + streams + "]}");
    }

    /// Creates the file and probes it with the current sniffer.
    FileProbe probe(const std::string& fileName = "clip.mp4");

    FakeTools m_tools;
};

} // namespace tarnwell::test
