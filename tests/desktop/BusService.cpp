// SPDX-License-Identifier: MIT
#include "tests/desktop/BusService.h"

#include "tests/support/TimeLimit.h"

#include <QDeadlineTimer>
#include <QUuid>

#include <gtest/gtest.h>

namespace tarnwell::test
{

BusService::BusService(const QString& name, const QString& path, Answer answer)
    : m_name(name)
    , m_connectionName(QUuid::createUuid().toString())
    , m_object(std::move(answer))
{
    m_thread.start();
    m_object.moveToThread(&m_thread);
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_connectionName);
    EXPECT_TRUE(bus.registerVirtualObject(path, &m_object));
    EXPECT_TRUE(bus.registerService(name)) << name.toStdString();
}

BusService::~BusService()
{
    QDBusConnection(m_connectionName).unregisterService(m_name);
    QDBusConnection::disconnectFromBus(m_connectionName);
    m_thread.quit();
    EXPECT_TRUE(m_thread.wait(QDeadlineTimer(longestWait))) << "the bus thread did not end";
    m_object.calls(); // the thread sanitizer sees this lock, but not the synchronisation inside Qt
}

QDBusMessage BusService::refusal(const QDBusMessage& call)
{
    return call.createErrorReply(QDBusError::Failed, QStringLiteral("not today"));
}

QDBusMessage BusService::silence(const QDBusMessage& /*call*/)
{
    return {};
}

QString BusService::Object::introspect(const QString& /*path*/) const
{
    return {};
}

bool BusService::Object::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    if (message.interface() == QStringLiteral("org.freedesktop.DBus.Introspectable"))
        return false;
    std::unique_lock lock(m_mutex);
    m_calls.append(message);
    const QDBusMessage answer = m_answer(message);
    lock.unlock();
    if (answer.type() == QDBusMessage::InvalidMessage)
        message.setDelayedReply(true);
    else
        connection.send(answer);
    return true;
}

QList<QDBusMessage> BusService::Object::calls() const
{
    const std::lock_guard lock(m_mutex);
    return m_calls;
}

} // namespace tarnwell::test
