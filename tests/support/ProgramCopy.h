// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FakeTools.h"
#include "tests/support/WindowTest.h"

#include <string>

namespace tarnwell::test
{

/// A copy of the built program in a folder with fake tools, a file "still.jpg" for them and a file "clip.mp4"
/// to open. The temporary files of the program are in a folder of their own.
class ProgramCopy
{
public:
    /// The contents of "clip.mp4".
    explicit ProgramCopy(const std::string& videoBytes = "bytes");

    /// Ends with a slash.
    std::string folder() const { return m_tools.folder(); }
    std::string program() const { return folder() + "tarnwell"; }
    std::string video() const { return folder() + "clip.mp4"; }
    std::string still() const { return folder() + "still.jpg"; }
    std::string output() const { return folder() + "out.mp4"; }
    /// The folder that contains folder(), without a trailing slash.
    std::string temporary() const { return m_temporary.path(); }

    FakeTools& tools() { return m_tools; }

private:
    OwnTemporaryFolder m_temporary;
    FakeTools m_tools;
};

} // namespace tarnwell::test
