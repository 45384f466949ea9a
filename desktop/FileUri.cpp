// SPDX-License-Identifier: MIT
#include "desktop/FileUri.h"

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

} // namespace

std::optional<std::string> localPath(QByteArray uri)
{
    if (!uri.toLower().startsWith(fileScheme))
        return std::nullopt;
    uri.remove(0, static_cast<qsizetype>(qstrlen(fileScheme)));
    if (uri.startsWith(authorityMark)) {
        const auto pathStart = uri.indexOf('/', static_cast<qsizetype>(qstrlen(authorityMark)));
        if (pathStart < 0 || !isThisMachine(uri.mid(2, pathStart - 2)))
            return std::nullopt;
        uri.remove(0, pathStart);
    }
    const QByteArray path = QByteArray::fromPercentEncoding(uri);
    // System calls end a path at its first NUL byte and would open another file.
    if (!path.startsWith('/') || path.contains('\0'))
        return std::nullopt;
    return path.toStdString();
}

} // namespace tarnwell
