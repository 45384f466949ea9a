// SPDX-License-Identifier: MIT
#include "app/StillFrame.h"

#include "desktop/PathText.h"
#include "orientation/PosterFrame.h"
#include "platform/Process.h"
#include "platform/ProgramStops.h"
#include "platform/TemporaryDirectory.h"
#include "probe/FileProbe.h"

#include <QFile>
#include <QImageReader>

namespace tarnwell
{

namespace
{

// A still of the largest video that decoders take, 16384 x 16384, is a GiB.
constexpr int largestPictureInMebibytes = 4096;

QImage loadPicture(const std::string& path)
{
    QImageReader::setAllocationLimit(largestPictureInMebibytes);
    return QImageReader(textOfPath(path)).read();
}

QImage pictureMadeBy(const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait)
{
    const TemporaryDirectory folder;
    const std::string stillPath = posterFramePath(folder.path());
    Process creator;
    creator.setExecutable(creatorPath);
    creator.setArguments(posterFrameArguments(probe.duration, required(probe.fileFullPath), stillPath));
    creator.launch(); // one that does not start leaves no picture, which is found out below
    wait([&] { creator.waitUntilExit(); });
    QImage picture = loadPicture(stillPath);
    QFile::remove(textOfPath(stillPath));
    return picture;
}

} // namespace

QImage extractStillFrame(const FileProbe& probe, const ToolContext& tools)
{
    QImage picture;
    if (const auto creator = tools.bundle.pathForResource("creator"))
        picture = pictureMadeBy(*creator, probe, tools.wait);
    else
        picture = loadPicture(required(tools.bundle.pathForImageResource("poster")));
    if (picture.isNull())
        programStops();
    return picture;
}

} // namespace tarnwell
