// SPDX-License-Identifier: MIT
#include "tests/support/FakeTools.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <filesystem>

namespace tarnwell::test
{

namespace
{

const std::string buildFolder = TARNWELL_BUILD_FOLDER;

void replaceLink(const std::string& target, const std::string& link)
{
    std::filesystem::remove(link);
    std::filesystem::create_symlink(target, link);
}

} // namespace

void FakeTools::addPoster()
{
    replaceLink(buildFolder + "/share/tarnwell/poster.png", folder() + "poster.png");
}

void FakeTools::removeSniffer()
{
    std::filesystem::remove(folder() + "sniffer");
}

void FakeTools::makeUnstartable(const std::string& name)
{
    std::filesystem::remove(folder() + name);
    writeFile(folder() + name, "no program");
}

void FakeTools::removeCreator()
{
    std::filesystem::remove(folder() + "creator");
}

Bundle FakeTools::bundle() const
{
    return Bundle(folder().substr(0, folder().size() - 1));
}

void FakeTools::setTool(const std::string& name, const std::string& script)
{
    writeFile(folder() + name + ".script", script);
    replaceLink(buildFolder + "/tests/fakeTool", folder() + name);
}

void FakeTools::useRealTool(const std::string& name)
{
    replaceLink(buildFolder + "/libexec/tarnwell/" + name, folder() + name);
}

} // namespace tarnwell::test
