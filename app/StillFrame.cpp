// SPDX-License-Identifier: MIT
#include "app/StillFrame.h"

#include "app/PictureFile.h"
#include "orientation/PosterFrame.h"
#include "platform/FatalError.h"
#include "platform/Process.h"
#include "probe/FileProbe.h"

#include <cstdio>

namespace tarnwell
{

QImage StillFrameExtractor::extract(const FileProbe& probe, const ToolContext& tools)
{
    const auto creator = tools.bundle.pathForResource("creator");
    QImage picture = creator ? pictureMadeBy(*creator, probe, tools.wait)
                             : loadPoster(required(tools.bundle.pathForImageResource("poster")));
    if (picture.isNull()) {
        removeFolder();
        fatalError();
    }
    return picture;
}

QImage StillFrameExtractor::pictureMadeBy(
    const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait)
{
    if (m_folder)
        m_folder->restore();
    else
        m_folder.emplace();
    QImage picture;
    for (std::string tried; picture.isNull() && m_folder->path() != tried;) {
        tried = m_folder->path();
        picture = runCreator(creatorPath, probe, wait);
        if (picture.isNull())
            m_folder->restore(); // its disk may have become full: then there is another folder
    }
    return picture;
}

QImage StillFrameExtractor::runCreator(
    const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait) const
{
    const std::string stillPath = posterFramePath(m_folder->path());
    Process creator;
    creator.setExecutable(creatorPath);
    creator.setArguments(posterFrameArguments(probe.duration, required(probe.fileFullPath), stillPath));
    // Ctrl+C in a terminal ends the application. If creator ended first, its missing picture would be fatal.
    creator.setSession(Process::Session::Own);
    creator.launch(); // the error is ignored: the missing picture is detected below
    QImage picture;
    wait([&] {
        creator.waitUntilExit();
        picture = loadStill(stillPath); // not on the main thread: large pictures take long to decode
    });
    std::remove(stillPath.c_str());
    return picture;
}

} // namespace tarnwell
