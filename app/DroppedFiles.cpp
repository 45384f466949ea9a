// SPDX-License-Identifier: MIT
#include "app/DroppedFiles.h"

#include "platform/FatalError.h"

#include <QByteArray>
#include <QMimeData>

namespace tarnwell
{

namespace
{

constexpr const char* uriListType = "text/uri-list";
constexpr const char* fileScheme = "file:";
constexpr const char* authorityMark = "//";

bool isThisMachine(const QByteArray& host)
{
    return host.isEmpty() || host == "localhost" || host == QSysInfo::machineHostName().toUtf8();
}

/// The percent-decoded bytes of a file URI's path. A file name need not be valid UTF-8.
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

} // namespace

std::optional<FileNameList> fileNameList(const QMimeData& data)
{
    FileNameList names;
    for (const QByteArray& line : data.data(QString::fromLatin1(uriListType)).split('\n')) {
        const QByteArray uri = line.trimmed();
        if (!uri.isEmpty() && !uri.startsWith('#'))
            names.push_back(localPath(uri));
    }
    return names.empty() ? std::nullopt : std::optional(names);
}

std::unique_ptr<QMimeData> copyOfFileNames(const QMimeData& data)
{
    const QString type = QString::fromLatin1(uriListType);
    auto copy = std::make_unique<QMimeData>();
    copy->setData(type, data.data(type));
    return copy;
}

std::optional<std::string> firstFile(const FileNameList& names)
{
    if (names.empty())
        fatalError();
    return names.front();
}

} // namespace tarnwell
