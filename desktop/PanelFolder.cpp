// SPDX-License-Identifier: MIT
#include "desktop/PanelFolder.h"

#include "desktop/PathText.h"
#include "platform/Sandbox.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace tarnwell
{

namespace
{

bool isGrantedByPortal(const QString& path)
{
    static const QRegularExpression documents(QStringLiteral("^/run/(user/[0-9]+|flatpak)/doc/"));
    return documents.match(path).hasMatch();
}

bool isFolder(const QString& path)
{
    return !path.isEmpty() && QFileInfo(path).isDir();
}

} // namespace

void PanelFolder::remember(const std::string& filePath)
{
    const QString path = textOfPath(filePath);
    if (!isGrantedByPortal(path))
        m_lastFolder = QFileInfo(path).path();
}

QString PanelFolder::path() const
{
    if (isFolder(m_lastFolder))
        return m_lastFolder;
    if (Sandbox::isInside())
        return {};
    const QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    return isFolder(videos) ? videos : QDir::homePath();
}

} // namespace tarnwell
