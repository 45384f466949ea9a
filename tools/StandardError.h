// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Writes whole lines to standard error, one write each. Nobody need listen: a line that is not taken for a
/// while is dropped, and so are the ones after it until somebody takes lines again. The wait ends when there
/// is something to read at `wishToStop`.
void writeErrorLines(const std::string& lines, int wishToStop = -1);
