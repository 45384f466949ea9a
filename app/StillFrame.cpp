// SPDX-License-Identifier: MIT
#include "app/StillFrame.h"

#include "orientation/PosterFrame.h"
#include "platform/FatalError.h"
#include "platform/Process.h"
#include "platform/TemporaryDirectory.h"
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

// A still of the largest video that decoders take, 16384 x 16384, is a GiB.
constexpr int largestPictureInMebibytes = 4096;

/// Empty where there is no such file. The path need not be text in any encoding.
std::string bytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return std::move(bytes).str();
}

/// Null for what is no picture.
QImage decoded(const std::string& bytes)
{
    QImageReader::setAllocationLimit(largestPictureInMebibytes);
    QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    return QImageReader(&buffer).read();
}

void loadPicture(const std::string& path, DecodedPicture& last)
{
    std::string bytes = bytesOf(path);
    const bool isKnown = !last.picture.isNull() && bytes == last.bytes;
    last.picture = isKnown ? last.picture.copy() : decoded(bytes); // copying takes less time
    last.bytes = std::move(bytes);
}

void loadPictureMadeBy(
    const std::string& creatorPath, const FileProbe& probe, const BlockingWait& wait, DecodedPicture& last)
{
    const TemporaryDirectory folder;
    const std::string stillPath = posterFramePath(folder.path());
    Process creator;
    creator.setExecutable(creatorPath);
    creator.setArguments(posterFrameArguments(probe.duration, required(probe.fileFullPath), stillPath));
    creator.launch(); // one that does not start leaves no picture, which is found out below
    wait([&] {
        creator.waitUntilExit();
        loadPicture(stillPath, last); // here, because a large one takes its time
    });
    std::remove(stillPath.c_str());
}

} // namespace

QImage extractStillFrame(const FileProbe& probe, const ToolContext& tools, DecodedPicture& last)
{
    if (const auto creator = tools.bundle.pathForResource("creator"))
        loadPictureMadeBy(*creator, probe, tools.wait, last);
    else
        loadPicture(required(tools.bundle.pathForImageResource("poster")), last);
    if (last.picture.isNull())
        fatalError();
    return last.picture;
}

} // namespace tarnwell
