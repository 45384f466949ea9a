// SPDX-License-Identifier: MIT
#pragma once

namespace tarnwell
{

class FileProbe;

/// Whether the described file can be turned: readable, not encrypted, with a video track whose width is not
/// 0. A width that is absent counts as not 0.
bool isSuitable(const FileProbe& probe);

} // namespace tarnwell
