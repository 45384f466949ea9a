// SPDX-License-Identifier: MIT
#include "desktop/FileUri.h"

#include "desktop/GioPointer.h"

#include <QByteArray>
#include <QString>
#include <QSysInfo>

namespace tarnwell
{

namespace
{

constexpr const char* fileScheme = "file:";
constexpr const char* authorityMark = "//";

bool isThisMachine(const QByteArray& host)
{
    return host.isEmpty() || host == "localhost" || host == QSysInfo::machineHostName().toUtf8();
}

std::optional<std::string> mountedPath(const QByteArray& uri)
{
    const ObjectPointer<GFile> file(g_file_new_for_uri(uri.constData()));
    const GlibText path(g_file_get_path(file.get()));
    return path ? std::optional<std::string>(path.get()) : std::nullopt;
}

} // namespace

std::optional<std::string> localPath(QByteArray uri)
{
    // System calls end a path at its first NUL byte and would open another file.
    if (QByteArray::fromPercentEncoding(uri).contains('\0'))
        return std::nullopt;
    if (!uri.toLower().startsWith(fileScheme))
        return mountedPath(uri);
    uri.remove(0, static_cast<qsizetype>(qstrlen(fileScheme)));
    if (uri.startsWith(authorityMark)) {
        const auto pathStart = uri.indexOf('/', static_cast<qsizetype>(qstrlen(authorityMark)));
        if (pathStart < 0 || !isThisMachine(uri.mid(2, pathStart - 2)))
            return std::nullopt;
        uri.remove(0, pathStart);
    }
    const QByteArray path = QByteArray::fromPercentEncoding(uri);
    return path.startsWith('/') ? std::optional(path.toStdString()) : std::nullopt;
}

} // namespace tarnwell
