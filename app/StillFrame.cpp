// SPDX-License-Identifier: MIT
#include "app/StillFrame.h"

#include "orientation/PosterFrame.h"
#include "platform/FatalError.h"
#include "platform/Process.h"
#include "probe/FileProbe.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <utility>

namespace tarnwell
{

namespace
{

// A frame of 16384 x 16384 pixels, the largest size that decoders accept, takes 1 GiB.
constexpr int largestPictureInMebibytes = 4096;

/// The bytes of the file; empty if there is none. QFile cannot open a path that is not valid UTF-8.
std::string bytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return std::move(bytes).str();
}

/// The picture in the file; null if the file is missing or no picture.
QImage loadPicture(const std::string& path)
{
    QImageReader::setAllocationLimit(largestPictureInMebibytes);
    const std::string bytes = bytesOf(path);
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    return QImageReader(&buffer).read();
}

} // namespace

QImage StillFrameExtractor::extract(const FileProbe& probe, const ToolContext& tools)
{
    const auto creator = tools.bundle.pathForResource("creator");
    QImage picture = creator ? pictureMadeBy(*creator, probe, tools.wait)
                             : loadPicture(required(tools.bundle.pathForImageResource("poster")));
    if (picture.isNull())
        fatalError();
    return picture;
}

QImage StillFrameExtractor::pictureMadeBy(
    const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait)
{
    if (m_folder)
        m_folder->restore();
    else
        m_folder.emplace();
    const std::string stillPath = posterFramePath(m_folder->path());
    Process creator;
    creator.setExecutable(creatorPath);
    creator.setArguments(posterFrameArguments(probe.duration, required(probe.fileFullPath), stillPath));
    creator.launch(); // the error is ignored: the missing picture is detected below
    QImage picture;
    wait([&] {
        creator.waitUntilExit();
        picture = loadPicture(stillPath); // not on the main thread: large pictures take long to decode
    });
    std::remove(stillPath.c_str());
    return picture;
}

} // namespace tarnwell
