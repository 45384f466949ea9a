// SPDX-License-Identifier: MIT
#include "tests/tools/ToolFolder.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <filesystem>
#include <system_error>

namespace tarnwell::test
{

namespace
{

const std::string buildFolder = TARNWELL_BUILD_FOLDER;

/// Places the program at `to` without a symbolic link: a program resolves those to find its own folder. A
/// hard link, or a copy where the build is on another file system or belongs to another user.
void placeProgram(const std::string& from, const std::string& to)
{
    std::filesystem::remove(to);
    std::error_code error;
    std::filesystem::create_hard_link(from, to, error);
    if (error)
        std::filesystem::copy_file(from, to);
}

} // namespace

ToolFolder::ToolFolder()
{
    placeProgram(buildFolder + "/libexec/tarnwell/creator", creator());
    placeProgram(buildFolder + "/libexec/tarnwell/sniffer", sniffer());
}

std::string ToolFolder::addData(const std::string& name, const std::string& contents)
{
    writeFile(m_tools.path() + name, contents);
    return m_tools.path() + name;
}

void ToolFolder::setTool(const std::string& name, const std::string& script, const std::string& program)
{
    if (m_programs[name] != program)
        placeProgram(buildFolder + "/tests/" + program, m_tools.path() + name);
    m_programs[name] = program;
    writeFile(m_tools.path() + name + ".script", script);
}

void ToolFolder::breakTool(const std::string& name)
{
    std::filesystem::remove(m_tools.path() + name); // it can be a link to the built fake
    writeFile(m_tools.path() + name,
        std::string("\x7F"
                    "ELF and no more"));
    std::filesystem::permissions(m_tools.path() + name, std::filesystem::perms::owner_all);
}

} // namespace tarnwell::test
