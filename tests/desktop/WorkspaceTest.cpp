// SPDX-License-Identifier: MIT
#include "desktop/Workspace.h"

#include "tests/desktop/BusService.h"
#include "tests/support/EventCounter.h"
#include "tests/support/Files.h"
#include "tests/support/WindowTest.h"

#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <utility>

namespace tarnwell::test
{

namespace
{

QString fileManagerName()
{
    return QStringLiteral("org.freedesktop.FileManager1");
}

QString fileManagerPath()
{
    return QStringLiteral("/org/freedesktop/FileManager1");
}

QString portalName()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString portalPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QDBusMessage requestHandle(const QDBusMessage& call)
{
    return call.createReply(
        QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/freedesktop/portal/desktop/request/1"))));
}

/// Whether the descriptor in the call is one of that file.
bool refersTo(const QVariant& descriptor, const std::string& path)
{
    struct stat carried = {};
    struct stat meant = {};
    return ::fstat(descriptor.value<QDBusUnixFileDescriptor>().fileDescriptor(), &carried) == 0
        && ::stat(path.c_str(), &meant) == 0 && carried.st_ino == meant.st_ino
        && carried.st_dev == meant.st_dev;
}

} // namespace

class WorkspaceTest : public testing::Test
{
protected:
    std::string makeFile(const std::string& name) const
    {
        writeFile(m_folder.path() + name, "contents");
        return m_folder.path() + name;
    }

    QUrl folderUrl() const { return QUrl::fromLocalFile(QString::fromStdString(m_folder.path())); }

    TemporaryDirectory m_folder;
    UrlCatcher m_opened;
};

class RevealTest : public WorkspaceTest
{
};

TEST_F(RevealTest, asksTheFileManagerOnceForExactlyTheFile)
{
    const std::string path = makeFile("clip.mp4");
    makeFile("other.mp4");
    const BusService fileManager(fileManagerName(), fileManagerPath(), BusService::emptyReply);
    const BusService portal(portalName(), portalPath(), requestHandle);
    activateFileViewerSelecting(FileURL(path));
    ASSERT_TRUE(waitUntil([&] { return !fileManager.calls().isEmpty(); }));
    // After the call for a second file, no further call for the first one is pending.
    activateFileViewerSelecting(FileURL(m_folder.path() + "other.mp4"));
    ASSERT_TRUE(waitUntil([&] { return fileManager.calls().size() >= 2; }));
    const auto calls = fileManager.calls();
    ASSERT_EQ(calls.size(), 2);
    const QDBusMessage& call = calls.first();
    EXPECT_EQ(call.interface(), fileManagerName());
    EXPECT_EQ(call.member(), QStringLiteral("ShowItems"));
    EXPECT_EQ(call.signature(), QStringLiteral("ass"));
    EXPECT_EQ(call.arguments().at(0).toStringList(), QStringList(QString::fromStdString("file://" + path)));
    EXPECT_EQ(call.arguments().at(1).toString(), QString());
    EXPECT_TRUE(portal.calls().isEmpty());
    EXPECT_TRUE(m_opened.urls().isEmpty());
}

TEST_F(RevealTest, oddCharactersArePercentEncodedInTheAddress)
{
    const std::string path = m_folder.path() + "a b%20\"#?\n\xc3\xa4\xff.mp4";
    const BusService fileManager(fileManagerName(), fileManagerPath(), BusService::emptyReply);
    activateFileViewerSelecting(FileURL(path));
    ASSERT_TRUE(waitUntil([&] { return !fileManager.calls().isEmpty(); }));
    const QString expected = QString::fromStdString("file://" + m_folder.path())
        + QStringLiteral("a%20b%2520%22%23%3F%0A%C3%A4%FF.mp4");
    EXPECT_EQ(fileManager.calls().first().arguments().at(0).toStringList(), QStringList(expected));
}

TEST_F(RevealTest, returnsBeforeTheFileManagerAnswers)
{
    std::optional<BusService> fileManager(
        std::in_place, fileManagerName(), fileManagerPath(), BusService::silence);
    activateFileViewerSelecting(FileURL(makeFile("clip.mp4")));
    ASSERT_TRUE(waitUntil([&] { return !fileManager->calls().isEmpty(); }));
    EXPECT_TRUE(m_opened.urls().isEmpty());
    fileManager.reset(); // like a file manager that crashes
    EXPECT_TRUE(waitUntil([&] { return !m_opened.urls().isEmpty(); }));
    EXPECT_EQ(m_opened.urls(), QList<QUrl>{folderUrl()});
}

TEST_F(RevealTest, asksThePortalWhereThereIsNoFileManager)
{
    const std::string path = makeFile("clip.mp4");
    const BusService portal(portalName(), portalPath(), requestHandle);
    activateFileViewerSelecting(FileURL(path));
    ASSERT_TRUE(waitUntil([&] { return !portal.calls().isEmpty(); }));
    const QDBusMessage call = portal.calls().first();
    EXPECT_EQ(call.interface(), QStringLiteral("org.freedesktop.portal.OpenURI"));
    EXPECT_EQ(call.member(), QStringLiteral("OpenDirectory"));
    EXPECT_EQ(call.signature(), QStringLiteral("sha{sv}"));
    EXPECT_TRUE(refersTo(call.arguments().at(1), path));
    EXPECT_TRUE(m_opened.urls().isEmpty());
}

TEST_F(RevealTest, asksThePortalWhereTheFileManagerRefuses)
{
    const BusService fileManager(fileManagerName(), fileManagerPath(), BusService::refusal);
    const BusService portal(portalName(), portalPath(), requestHandle);
    activateFileViewerSelecting(FileURL(makeFile("clip.mp4")));
    EXPECT_TRUE(waitUntil([&] { return portal.calls().size() == 1; }));
    EXPECT_EQ(fileManager.calls().size(), 1);
}

TEST_F(RevealTest, opensTheFolderWithoutAServiceThatCanSelectTheFile)
{
    const std::string file = makeFile("clip.mp4");
    const std::tuple<const char*, std::string, std::optional<BusService::Answer>, int> cases[] = {
        {"no service", file, std::nullopt, 0},
        {"the portal refuses", file, BusService::refusal, 1},
        {"the file is missing", m_folder.path() + "gone.mp4", requestHandle, 0},
    };
    for (const auto& [name, path, answer, portalCalls] : cases) {
        SCOPED_TRACE(name);
        std::optional<BusService> portal;
        if (answer)
            portal.emplace(portalName(), portalPath(), *answer);
        const auto earlier = m_opened.urls().size();
        activateFileViewerSelecting(FileURL(path));
        EXPECT_TRUE(waitUntil([&] { return m_opened.urls().size() > earlier; }));
        EXPECT_EQ(m_opened.urls().mid(earlier), QList<QUrl>{folderUrl()});
        EXPECT_EQ(portal ? portal->calls().size() : 0, portalCalls);
    }
}

} // namespace tarnwell::test
