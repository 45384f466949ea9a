// SPDX-License-Identifier: MIT
#include "desktop/FileTransfer.h"

#include "desktop/EventLoopWait.h"
#include "desktop/PathText.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QMimeData>
#include <QVariantMap>

#include <chrono>

namespace tarnwell
{

namespace
{

constexpr std::chrono::milliseconds longestAnswer = std::chrono::seconds(10);

/// Some sources end the key with a NUL byte.
QString textOfKey(const QByteArray& key)
{
    return QString::fromUtf8(key.constData());
}

} // namespace

QString fileTransferType(const QMimeData& drag)
{
    // The second name is that of early GTK versions.
    const QString types[] = {QStringLiteral("application/vnd.portal.filetransfer"),
        QStringLiteral("application/vnd.portal.files")};
    for (const QString& type : types) {
        if (drag.hasFormat(type))
            return type;
    }
    return {};
}

std::optional<std::vector<std::string>> retrieveFiles(const QByteArray& key)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Documents"),
        QStringLiteral("/org/freedesktop/portal/documents"),
        QStringLiteral("org.freedesktop.portal.FileTransfer"), QStringLiteral("RetrieveFiles"));
    call << textOfKey(key) << QVariantMap();
    QDBusMessage answer;
    waitInEventLoop([&call, &answer] {
        answer
            = QDBusConnection::sessionBus().call(call, QDBus::Block, static_cast<int>(longestAnswer.count()));
    });
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QStringLiteral("as"))
        return std::nullopt;
    std::vector<std::string> paths;
    for (const QString& path : answer.arguments().first().toStringList())
        paths.push_back(pathOfText(path));
    return paths;
}

} // namespace tarnwell
