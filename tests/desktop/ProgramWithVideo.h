// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/ProgramCopy.h"
#include "tests/support/Reports.h"

#include <filesystem>
#include <string>

namespace tarnwell::test
{

/// A running copy of the program with fake tools, and a folder with the file "clip.mp4", which they report as
/// a video that is saved without a choice of the mode.
class ProgramWithVideo
{
public:
    /// Without a trailing slash.
    std::string folder() const { return m_copy.folder() + "videos"; }
    std::string file(const std::string& name) const { return folder() + "/" + name; }

    ExternalProgram& program() { return m_program; }

    /// Waits until creator saves a video under that name and the program shows its progress.
    void waitForResult(const std::string& name, CallSite site = {})
    {
        m_program.waitForOutput("\"-y\", \"" + file(name) + "\"", site);
        m_program.waitForOutput("Percent : ", site);
    }

private:
    static std::string prepared(ProgramCopy& copy)
    {
        std::filesystem::create_directory(copy.folder() + "videos");
        writeFile(copy.folder() + "videos/clip.mp4", "bytes");
        copy.tools().setSniffer("print " + reportOf({.codec = "mpeg4"}));
        copy.tools().setCreator("error time=00:00:03.00 \\n\ncopy " + copy.still() + "\n");
        return copy.program();
    }

    ProgramCopy m_copy;
    ExternalProgram m_program{prepared(m_copy)};
};

} // namespace tarnwell::test
