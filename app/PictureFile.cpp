// SPDX-License-Identifier: MIT
#include "app/PictureFile.h"

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImageReader>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell
{

namespace
{

constexpr qsizetype largestFile = 512 << 20; // bytes

// FFmpeg decodes no picture of more pixels. A colour picture of that size takes 1 GiB.
constexpr qint64 mostPixels = 1 << 28;
constexpr int largestPictureInMebibytes = 1024;

/// Opens the regular file at the path. O_NONBLOCK: a named pipe at the path must not block the open call.
/// Returns an empty array for anything else, for an empty file and for one that is too large.
QByteArray bytesOf(const std::string& path, int openFlags)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | openFlags);
    if (descriptor < 0)
        return {};
    struct stat status = {};
    QFile file;
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largestFile
        || !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return {};
    }
    return file.read(largestFile);
}

QImage decoded(QByteArray bytes, const QByteArray& format)
{
    QImageReader::setAllocationLimit(largestPictureInMebibytes);
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setDecideFormatFromContent(false);
    if (!reader.canRead()) // size would print a warning
        return {};
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() > mostPixels)
        return {};
    return reader.read();
}

} // namespace

QImage loadStill(const std::string& path)
{
    return decoded(bytesOf(path, O_NOFOLLOW), "jpeg");
}

QImage loadPoster(const std::string& path)
{
    return decoded(bytesOf(path, 0), "png");
}

} // namespace tarnwell
