// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Turns what ffmpeg says of its progress, keys and values line by line in pieces of any size, into status
/// lines.
class ProgressReader
{
public:
    /// The status lines that the piece completes, each with its end of line; empty where it completes none.
    std::string read(const std::string& piece);

private:
    std::string takeLine(const std::string& line);

    std::string m_rest;
    std::optional<std::int64_t> m_microseconds; // of media written, since the last line
};

/// "time=HH:MM:SS.hh", rounded down.
std::string statusLine(std::int64_t microseconds);

/// Passes on what ffmpeg complains of, whole lines only, so that none can be taken for a status line.
class ComplaintReader
{
public:
    std::string read(const std::string& piece);

private:
    std::string m_rest;
};
