// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileURL.h"
#include "tests/desktop/BusService.h"
#include "tests/support/Waiting.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

#include <gtest/gtest.h>

#include <string>

namespace tarnwell::test
{

/// Shows no dialog, but answers each request for one when the test chooses.
class FakePortal
{
public:
    FakePortal()
        : m_service(QStringLiteral("org.freedesktop.portal.Desktop"),
            QStringLiteral("/org/freedesktop/portal/desktop"),
            [this](const QDBusMessage& call) { return reply(call); })
    {
    }

    /// Waits until that many file dialogs were requested.
    void waitForRequests(qsizetype count)
    {
        waitFor("a request for a file dialog", [this, count] { return requests().size() >= count; });
        EXPECT_EQ(requests().size(), count);
    }

    qsizetype requestCount() const { return requests().size(); }

    /// Ends the dialog of the last request. An empty path cancels it.
    void answer(const std::string& path)
    {
        QVariantMap results;
        if (!path.empty())
            results.insert(
                QStringLiteral("uris"), QStringList(QString::fromStdString(FileURL(path).absoluteString())));
        QDBusMessage response = QDBusMessage::createSignal(handle(requests().size()),
            QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        response << uint(path.empty() ? 1 : 0) << results;
        QDBusConnection::sessionBus().send(response);
    }

    /// An option of the last request as bytes; the portal's texts of bytes end with NUL. Empty if it is
    /// absent.
    std::string option(const char* name) const
    {
        const QVariant value = options().value(QString::fromLatin1(name));
        return value.userType() == QMetaType::QByteArray ? value.toByteArray().constData()
                                                         : value.toString().toStdString();
    }

    bool hasOption(const char* name) const { return options().contains(QString::fromLatin1(name)); }

private:
    static QString handle(qsizetype number)
    {
        return QStringLiteral("/org/freedesktop/portal/desktop/request/%1").arg(number);
    }

    QList<QDBusMessage> requests() const
    {
        QList<QDBusMessage> found;
        for (const auto& call : m_service.calls()) {
            if (call.interface() == QStringLiteral("org.freedesktop.portal.FileChooser"))
                found.append(call);
        }
        return found;
    }

    /// Of the last request.
    QVariantMap options() const { return qdbus_cast<QVariantMap>(requests().last().arguments().at(2)); }

    // On the service's thread.
    QDBusMessage reply(const QDBusMessage& call)
    {
        if (call.interface() == QStringLiteral("org.freedesktop.portal.FileChooser"))
            return call.createReply(QVariant::fromValue(QDBusObjectPath(handle(++m_handles))));
        if (call.member() == QStringLiteral("Get"))
            return call.createReply(QVariant::fromValue(QDBusVariant(uint(3))));
        return call.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("not faked"));
    }

    qsizetype m_handles = 0;
    BusService m_service;
};

} // namespace tarnwell::test
