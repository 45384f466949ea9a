// SPDX-License-Identifier: MIT
#include "app/DroppedFiles.h"

#include "desktop/FileTransfer.h"
#include "desktop/FileUri.h"
#include "platform/FatalError.h"
#include "platform/FileAttributes.h"
#include "platform/Sandbox.h"

#include <QByteArray>
#include <QMimeData>

namespace tarnwell
{

namespace
{

constexpr const char* uriListType = "text/uri-list";

QString transferType(const QMimeData& data)
{
    const bool isListUsed = !Sandbox::isInside() && data.hasFormat(QString::fromLatin1(uriListType));
    return isListUsed ? QString() : fileTransferType(data);
}

} // namespace

bool isFileTransfer(const QMimeData& data)
{
    return !transferType(data).isEmpty();
}

std::optional<FileNameList> retrieveFileNameList(const QMimeData& data)
{
    const auto paths = retrieveFiles(data.data(transferType(data)));
    if (!paths || paths->empty())
        return std::nullopt;
    FileNameList names;
    for (const std::string& path : *paths)
        names.push_back(isExistingFile(path) ? std::optional(path) : std::nullopt);
    return names;
}

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
    const QString type = isFileTransfer(data) ? transferType(data) : QString::fromLatin1(uriListType);
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
