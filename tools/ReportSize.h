// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

/// The largest report that sniffer prints. The application holds all of it in memory, several times as large.
constexpr std::size_t mostReport = std::size_t(8) << 20U;

/// Returns a JSON report of at most 1 MiB and text that is no JSON unchanged. In a larger report at most 1000
/// tags of the file, of each stream and of each chapter are kept, "rotate" and "language" among them, and
/// members are in alphabetical order. If the rest is larger than mostReport, chapters, which the application
/// does not read, are removed and texts are cut after 64 KiB. If that is not enough, as with very many
/// streams, the report is replaced by one with an error.
std::string limitedReport(const std::string& report);
