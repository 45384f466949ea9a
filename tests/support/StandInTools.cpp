// SPDX-License-Identifier: MIT
#include "tests/support/StandInTools.h"

#include "tests/support/Files.h"

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

void StandInTools::addPoster()
{
    replaceLink(buildFolder + "/share/tarnwell/poster.png", folder() + "poster.png");
}

void StandInTools::removeSniffer()
{
    std::filesystem::remove(folder() + "sniffer");
}

void StandInTools::makeUnstartable(const std::string& name)
{
    std::filesystem::remove(folder() + name);
    writeFile(folder() + name, "no program");
}

void StandInTools::removeCreator()
{
    std::filesystem::remove(folder() + "creator");
}

Bundle StandInTools::bundle() const
{
    return Bundle(folder().substr(0, folder().size() - 1));
}

void StandInTools::setTool(const std::string& name, const std::string& script)
{
    writeFile(folder() + name + ".script", script);
    replaceLink(buildFolder + "/tests/standInTool", folder() + name);
}

void StandInTools::useRealTool(const std::string& name)
{
    replaceLink(buildFolder + "/libexec/tarnwell/" + name, folder() + name);
}

} // namespace tarnwell::test
