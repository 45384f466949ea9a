// SPDX-License-Identifier: MIT
#include "desktop/SingleInstance.h"

#include "tests/desktop/BusService.h"
#include "tests/support/Folders.h"
#include "tests/support/WindowTest.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

namespace tarnwell::test
{

namespace
{

QString name()
{
    return QStringLiteral("org.tarnwell.Tarnwell");
}

QString path()
{
    return QStringLiteral("/org/tarnwell/Tarnwell");
}

QDBusMessage callOf(const char* member)
{
    return QDBusMessage::createMethodCall(
        name(), path(), QStringLiteral("org.freedesktop.Application"), QString::fromLatin1(member));
}

} // namespace

class SingleInstanceTest : public testing::Test
{
protected:
    ~SingleInstanceTest() override { QDBusConnection::sessionBus().unregisterService(name()); }

    /// Calls the instance from another connection and returns the reply. The instance replies on this thread.
    QDBusMessage answerTo(const QDBusMessage& call)
    {
        const QString connection = QStringLiteral("caller");
        std::optional<QDBusMessage> answer;
        {
            QDBusPendingCallWatcher watcher(
                QDBusConnection::connectToBus(QDBusConnection::SessionBus, connection).asyncCall(call));
            EXPECT_TRUE(waitUntil([&] { return watcher.isFinished(); }));
            answer = watcher.reply();
        }
        QDBusConnection::disconnectFromBus(connection);
        return *answer;
    }

    int m_reopens = 0;
    ActivationToken m_token; // of the last one
    std::optional<std::string> m_uri; // of the last one
    SingleInstance m_instance{[this](const ActivationToken& token, const auto& uri) {
        ++m_reopens;
        m_token = token;
        m_uri = uri;
    }};
};

TEST_F(SingleInstanceTest, theFirstOneOwnsTheName)
{
    EXPECT_EQ(m_instance.claim(), SingleInstance::Role::First);
    const QDBusReply<QString> owner = QDBusConnection::sessionBus().interface()->serviceOwner(name());
    EXPECT_EQ(owner.value(), QDBusConnection::sessionBus().baseService());
    EXPECT_EQ(m_reopens, 0);
}

TEST_F(SingleInstanceTest, theFirstOneReopensOnActivateAndOpenWithTheToken)
{
    const std::tuple<const char*, QVariantMap, ActivationToken> cases[] = {
        {"nothing", {}, {}},
        {"X11", {{QStringLiteral("desktop-startup-id"), QStringLiteral("a_TIME5")}},
            {.startupId = QStringLiteral("a_TIME5")}},
        {"Wayland", {{QStringLiteral("activation-token"), QStringLiteral("abc")}},
            {.token = QStringLiteral("abc")}},
        {"no text", {{QStringLiteral("activation-token"), 7}, {QStringLiteral("desktop-startup-id"), true}},
            {}},
    };
    ASSERT_EQ(m_instance.claim(), SingleInstance::Role::First);
    int reopens = 0;
    for (const auto& [name, platformData, token] : cases) {
        SCOPED_TRACE(name);
        QDBusMessage activate = callOf("Activate");
        activate << platformData;
        QDBusMessage open = callOf("Open");
        open << QStringList(QStringLiteral("file:///clip.mp4")) << platformData;
        for (const QDBusMessage& call : {activate, open}) {
            m_token = {QStringLiteral("of an"), QStringLiteral("earlier call")};
            EXPECT_EQ(answerTo(call).type(), QDBusMessage::ReplyMessage);
            EXPECT_EQ(m_reopens, ++reopens);
            EXPECT_EQ(m_token, token);
        }
    }
}

TEST_F(SingleInstanceTest, passesOnTheUriOfTheFirstFile)
{
    const std::tuple<const char*, QStringList, std::optional<std::string>> cases[] = {
        {"none", {}, std::nullopt},
        {"one", {QStringLiteral("file:///a/clip.mp4")}, "file:///a/clip.mp4"},
        {"two", {QStringLiteral("file:///a/1.mp4"), QStringLiteral("file:///a/2.mp4")}, "file:///a/1.mp4"},
        {"no UTF-8", {QStringLiteral("file:///a%20b/%FF%C3%A4.mp4")}, "file:///a%20b/%FF%C3%A4.mp4"},
        {"elsewhere first", {QStringLiteral("sftp://host/1.mp4"), QStringLiteral("file:///2.mp4")},
            "sftp://host/1.mp4"},
    };
    ASSERT_EQ(m_instance.claim(), SingleInstance::Role::First);
    for (const auto& [name, uris, uri] : cases) {
        SCOPED_TRACE(name);
        m_uri = "of an earlier call";
        QDBusMessage open = callOf("Open");
        open << uris << QVariantMap();
        EXPECT_EQ(answerTo(open).type(), QDBusMessage::ReplyMessage);
        EXPECT_EQ(m_uri, uri);
    }
    EXPECT_EQ(m_reopens, static_cast<int>(std::size(cases)));
    EXPECT_EQ(answerTo(callOf("Activate") << QVariantMap()).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(m_uri, std::nullopt);
}

TEST_F(SingleInstanceTest, anActionChangesNothing)
{
    ASSERT_EQ(m_instance.claim(), SingleInstance::Role::First);
    QDBusMessage action = callOf("ActivateAction");
    action << QStringLiteral("play") << QVariantList() << QVariantMap();
    EXPECT_EQ(answerTo(action).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(m_reopens, 0);
}

TEST_F(SingleInstanceTest, aSecondProcessPassesItsTokenToTheFirstAndExitsSilently)
{
    ASSERT_EQ(m_instance.claim(), SingleInstance::Role::First);
    QProcess second;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), QStringLiteral("abc"));
    environment.insert(QStringLiteral("DESKTOP_STARTUP_ID"), QStringLiteral("launcher-1_TIME5"));
    second.setProcessEnvironment(environment);
    second.start(QStringLiteral(TARNWELL_BUILD_FOLDER "/bin/tarnwell"), QStringList());
    EXPECT_TRUE(waitUntil([&] { return second.state() == QProcess::NotRunning; }));
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(second.readAll(), QByteArray());
    EXPECT_EQ(m_reopens, 1);
    EXPECT_EQ(m_token, (ActivationToken{QStringLiteral("abc"), QStringLiteral("launcher-1_TIME5")}));
}

TEST_F(SingleInstanceTest, aLaterOneActivatesTheOwnerWithItsToken)
{
    const ActivationToken whole{QStringLiteral("abc"), QStringLiteral("launcher-1_TIME5")};
    for (const ActivationToken& token : {ActivationToken(), whole}) {
        const BusService first(name(), path(), BusService::emptyReply);
        EXPECT_EQ(m_instance.claim(token), SingleInstance::Role::Later);
        ASSERT_EQ(first.calls().size(), 1);
        const QDBusMessage call = first.calls().first();
        EXPECT_EQ(call.path(), path());
        EXPECT_EQ(call.interface(), QStringLiteral("org.freedesktop.Application"));
        EXPECT_EQ(call.member(), QStringLiteral("Activate"));
        EXPECT_EQ(call.signature(), QStringLiteral("a{sv}"));
        const auto platformData = qdbus_cast<QVariantMap>(call.arguments().first());
        EXPECT_EQ(platformData.value(QStringLiteral("activation-token")).toString(), token.token);
        EXPECT_EQ(platformData.value(QStringLiteral("desktop-startup-id")).toString(), token.startupId);
        EXPECT_EQ(platformData.size(), token == whole ? 2 : 0);
        EXPECT_EQ(m_reopens, 0);
    }
}

TEST_F(SingleInstanceTest, isTheFirstWhereTheOwnerIsAnotherProgram)
{
    const BusService stranger(name(), QStringLiteral("/elsewhere"), BusService::emptyReply);
    EXPECT_EQ(m_instance.claim(), SingleInstance::Role::First);
    EXPECT_TRUE(stranger.calls().isEmpty());
}

TEST_F(SingleInstanceTest, isTheFirstWhereTheOwnerRefusesOrNeverAnswers)
{
    for (const auto& answer : {BusService::refusal, BusService::silence}) {
        const BusService owner(name(), path(), answer);
        EXPECT_EQ(m_instance.claim(), SingleInstance::Role::First);
        EXPECT_EQ(owner.calls().size(), 1);
    }
}

TEST_F(SingleInstanceTest, theNameIsFreeAfterItsOwnerHasDisconnected)
{
    {
        const BusService first(name(), path(), BusService::emptyReply);
        EXPECT_EQ(m_instance.claim(), SingleInstance::Role::Later);
    }
    SingleInstance next([](const ActivationToken&, const auto&) {});
    EXPECT_EQ(next.claim(), SingleInstance::Role::First);
}

} // namespace tarnwell::test
