// SPDX-License-Identifier: MIT
// The panels of the built program where the desktop shows dialogs of its own. A fake portal stands for the
// desktop: to Qt its dialogs are native ones like others.
#include "platform/FileURL.h"
#include "platform/TemporaryDirectory.h"
#include "tests/desktop/BusService.h"
#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/Samples.h"
#include "tests/support/Waiting.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

#include <gtest/gtest.h>

#include <filesystem>

namespace tarnwell::test
{

namespace
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

    /// An option of the last request as bytes; the portal's texts of bytes end with NUL.
    std::string option(const char* name) const
    {
        const QVariant value
            = qdbus_cast<QVariantMap>(requests().last().arguments().at(2)).value(QString::fromLatin1(name));
        return value.userType() == QMetaType::QByteArray ? value.toByteArray().constData()
                                                         : value.toString().toStdString();
    }

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

/// Sets a variable for the programs that are started during its lifetime.
class EnvironmentValue
{
public:
    EnvironmentValue(const char* name, const std::string& value)
        : m_name(name)
    {
        qputenv(name, QByteArray::fromStdString(value));
    }
    ~EnvironmentValue() { qunsetenv(m_name); }
    EnvironmentValue(const EnvironmentValue&) = delete;
    EnvironmentValue& operator=(const EnvironmentValue&) = delete;

private:
    const char* m_name;
};

} // namespace

class NativePanelTest : public testing::Test
{
protected:
    NativePanelTest()
    {
        std::filesystem::create_directory(folder());
        makeSampleVideo(folder() + "/clip.mp4", {.codec = "mpeg4"}); // no choice of a mode
    }

    /// Without a trailing slash.
    std::string folder() const { return m_folder.path() + "videos"; }

    /// Opens the sample and shows the save panel.
    void openAndBeginSave()
    {
        m_program.waitForWindow("Tarnwell");
        m_program.keys("ctrl+o");
        m_portal.waitForRequests(1);
        m_portal.answer(folder() + "/clip.mp4");
        m_program.waitForWindow("Tarnwell");
        waitFor("the save panel", [this] {
            m_program.keys("ctrl+s"); // does nothing during the analysis and while the panel is shown
            return m_portal.requestCount() == 2;
        });
    }

    void waitForResult(const std::string& name)
    {
        m_program.waitForOutput("\"-y\", \"" + folder() + "/" + name + "\"");
        m_program.waitForOutput("Percent : ");
    }

    FakePortal m_portal;

private:
    EnvironmentValue m_theme{"QT_QPA_PLATFORMTHEME", "xdgdesktopportal"};
    TemporaryDirectory m_folder;

protected:
    ExternalProgram m_program;
};

TEST_F(NativePanelTest, theSavePanelStartsInTheFolderOfTheVideoAndTheExtensionIsAdded)
{
    openAndBeginSave();
    EXPECT_EQ(m_portal.option("current_folder"), folder());
    EXPECT_EQ(m_portal.option("current_name"), "Processed");
    m_portal.answer(folder() + "/Clip");
    waitForResult("Clip.mp4");
}

TEST_F(NativePanelTest, aFileWhoseNameTheDialogDidNotShowIsReplacedOnlyAfterYes)
{
    writeFile(folder() + "/Clip.mp4", "earlier result");
    openAndBeginSave();
    m_portal.answer(folder() + "/Clip");
    m_program.waitForWindow("Save Video");
    EXPECT_EQ(contentsOf(folder() + "/Clip.mp4"), "earlier result");
    m_program.keys("alt+y");
    waitForResult("Clip.mp4");
}

TEST_F(NativePanelTest, aNoShowsThePanelAgainWithTheChosenName)
{
    writeFile(folder() + "/Clip.mp4", "earlier result");
    openAndBeginSave();
    m_portal.answer(folder() + "/Clip");
    m_program.waitForWindow("Save Video");
    m_program.keys("Return");
    m_portal.waitForRequests(3);
    EXPECT_EQ(m_portal.option("current_name"), "Clip");
    EXPECT_EQ(m_portal.option("current_folder"), folder());
    m_portal.answer(folder() + "/Other");
    waitForResult("Other.mp4");
    EXPECT_EQ(contentsOf(folder() + "/Clip.mp4"), "earlier result");
}

TEST_F(NativePanelTest, thePortalsOwnQuestionIsNotRepeated)
{
    writeFile(folder() + "/Clip.mp4", "earlier result");
    openAndBeginSave();
    m_portal.answer(folder() + "/Clip.mp4");
    waitForResult("Clip.mp4");
}

TEST_F(NativePanelTest, aMissingFolderIsReportedAndThePanelShownAgain)
{
    openAndBeginSave();
    m_portal.answer(folder() + "/missing/Clip.mp4");
    m_program.waitForWindow("Save Video");
    m_program.keys("Return");
    m_portal.waitForRequests(3);
    m_portal.answer("");
    m_program.waitForWindow("Tarnwell");
}

TEST(PortalDialogsTest, aDesktopWithoutAQtThemeGetsThePortalsDialogs)
{
    FakePortal portal;
    const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    ExternalProgram program;
    program.waitForWindow("Tarnwell");
    program.keys("ctrl+o");
    portal.waitForRequests(1);
}

TEST(PortalDialogsTest, otherDesktopsKeepTheirOwnDialogs)
{
    const FakePortal portal;
    const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", "LXQt");
    ExternalProgram program;
    program.waitForWindow("Tarnwell");
    program.keysUntilWindow("ctrl+o", "Open Video");
    EXPECT_EQ(portal.requestCount(), 0);
}

TEST(PortalDialogsTest, withoutAPortalAnotherDialogIsShown)
{
    const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", "GNOME");
    ExternalProgram program;
    program.waitForWindow("Tarnwell");
    program.keysUntilWindow("ctrl+o", "Open Video");
}

} // namespace tarnwell::test
