// SPDX-License-Identifier: MIT
#include "tests/probe/ProbeTestSetup.h"

#include "tests/support/Files.h"

namespace tarnwell::test
{

JSON json(std::string_view text)
{
    auto parsed = JSON::parse(text);
    if (const auto* error = std::get_if<std::string>(&parsed)) {
        ADD_FAILURE() << *error << " in " << text;
        return {};
    }
    return std::get<JSON>(parsed);
}

std::string textOf(const TrackInfo& track, std::string_view key)
{
    const auto entry = track.find(key);
    if (entry == track.end() || !std::holds_alternative<std::string>(entry->second)) {
        ADD_FAILURE() << "no text " << key;
        return {};
    }
    return std::get<std::string>(entry->second);
}

std::string metadataOf(const FileProbe& probe, std::string_view label)
{
    for (const auto& entry : probe.metadata) {
        if (entry.at("key") == label)
            return entry.at("value");
    }
    ADD_FAILURE() << "no entry " << label;
    return {};
}

FileProbe ProbeTestSetup::probeReported(const std::string& report, const std::string& fileName)
{
    writeFile(path("report.json"), report);
    m_tools.setSniffer("print-file " + path("report.json"));
    return probe(fileName);
}

FileProbe ProbeTestSetup::probe(const std::string& fileName)
{
    writeFile(path(fileName), "not looked into");
    return {path(fileName), m_tools.context()};
}

} // namespace tarnwell::test
