// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>
#include <QThread>

#include <functional>
#include <mutex>

namespace tarnwell::test
{

/// A program on the session bus that owns a name and answers calls, on a separate connection and thread, like
/// another process. Owns the name during its lifetime.
class BusService
{
public:
    /// Returns the answer to a call; an invalid message for no answer.
    using Answer = std::function<QDBusMessage(const QDBusMessage& call)>;

    /// Answers calls to the object of that path, and calls to others with the bus's usual error.
    BusService(const QString& name, const QString& path, Answer answer);
    ~BusService();
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    /// The calls so far, introspection left out.
    QList<QDBusMessage> calls() const { return m_object.calls(); }

    /// Sends a signal as the owner of the name.
    void send(const QDBusMessage& signal) const { QDBusConnection(m_connectionName).send(signal); }

    static QDBusMessage emptyReply(const QDBusMessage& call) { return call.createReply(); }
    static QDBusMessage refusal(const QDBusMessage& call);
    static QDBusMessage silence(const QDBusMessage& call);

private:
    class Object : public QDBusVirtualObject
    {
    public:
        explicit Object(Answer answer)
            : m_answer(std::move(answer))
        {
        }

        QString introspect(const QString& path) const override;
        bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
        QList<QDBusMessage> calls() const;

    private:
        Answer m_answer;
        mutable std::mutex m_mutex;
        QList<QDBusMessage> m_calls;
    };

    QString m_name;
    QString m_connectionName;
    Object m_object;
    QThread m_thread;
};

} // namespace tarnwell::test
