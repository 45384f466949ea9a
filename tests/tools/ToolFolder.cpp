// SPDX-License-Identifier: MIT
#include "tests/tools/ToolFolder.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <filesystem>

namespace tarnwell::test
{

namespace
{

const std::string buildFolder = TARNWELL_BUILD_FOLDER;

// Copies instead of linking: a program resolves links to itself and would look in the wrong folder.
void copyProgram(const std::string& from, const std::string& to)
{
    std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
}

} // namespace

ToolFolder::ToolFolder()
{
    copyProgram(buildFolder + "/libexec/tarnwell/creator", creator());
    copyProgram(buildFolder + "/libexec/tarnwell/sniffer", sniffer());
}

std::string ToolFolder::addData(const std::string& name, const std::string& contents)
{
    writeFile(m_tools.path() + name, contents);
    return m_tools.path() + name;
}

void ToolFolder::setTool(const std::string& name, const std::string& script, const std::string& program)
{
    if (m_programs[name] != program)
        copyProgram(buildFolder + "/tests/" + program, m_tools.path() + name);
    m_programs[name] = program;
    writeFile(m_tools.path() + name + ".script", script);
}

void ToolFolder::breakTool(const std::string& name)
{
    writeFile(m_tools.path() + name,
        std::string("\x7F"
                    "ELF and no more"));
    std::filesystem::permissions(m_tools.path() + name, std::filesystem::perms::owner_all);
}

} // namespace tarnwell::test
