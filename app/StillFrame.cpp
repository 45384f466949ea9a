// SPDX-License-Identifier: MIT
#include "app/StillFrame.h"

#include "orientation/PosterFrame.h"
#include "platform/Process.h"
#include "platform/ProgramStops.h"
#include "platform/TemporaryDirectory.h"
#include "probe/FileProbe.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace tarnwell
{

namespace
{

// A still of the largest video that decoders take, 16384 x 16384, is a GiB.
constexpr int largestPictureInMebibytes = 4096;

/// Null for what is no picture, or not there. Reads the bytes itself: the path need not be text in any
/// encoding.
QImage loadPicture(const std::string& path)
{
    QImageReader::setAllocationLimit(largestPictureInMebibytes);
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    return QImageReader(&buffer).read();
}

QImage pictureMadeBy(const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait)
{
    const TemporaryDirectory folder;
    const std::string stillPath = posterFramePath(folder.path());
    Process creator;
    creator.setExecutable(creatorPath);
    creator.setArguments(posterFrameArguments(probe.duration, required(probe.fileFullPath), stillPath));
    creator.launch(); // one that does not start leaves no picture, which is found out below
    QImage picture;
    wait([&] {
        creator.waitUntilExit();
        picture = loadPicture(stillPath); // here, because a large one takes its time
    });
    std::remove(stillPath.c_str());
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
