// SPDX-License-Identifier: MIT
#include "desktop/PathText.h"

#include <QFile>

namespace tarnwell
{

QString textOfPath(const std::string& path)
{
    return QFile::decodeName(QByteArray::fromStdString(path));
}

std::string pathOfText(const QString& text)
{
    return QFile::encodeName(text).toStdString();
}

QString textOf(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

} // namespace tarnwell
