// SPDX-License-Identifier: MIT
#include "desktop/SingleInstance.h"
#include "desktop/Workspace.h"
#include "platform/TemporaryDirectory.h"
#include "tests/support/EventCounter.h"
#include "tests/support/Files.h"
#include "tests/support/WindowTest.h"

#include <QDBusConnection>

#include <gtest/gtest.h>

namespace tarnwell::test
{

// The program is started with the address of a session bus that does not exist.
class NoBusTest : public testing::Test
{
protected:
    NoBusTest() { EXPECT_FALSE(QDBusConnection::sessionBus().isConnected()); }
};

TEST_F(NoBusTest, everyInstanceIsTheFirst)
{
    SingleInstance one([](const ActivationToken&, const auto&) {});
    SingleInstance other([](const ActivationToken&, const auto&) {});
    EXPECT_EQ(one.claim(), SingleInstance::Role::First);
    EXPECT_EQ(other.claim(), SingleInstance::Role::First);
}

TEST_F(NoBusTest, revealOpensTheFolder)
{
    const UrlCatcher opened;
    const TemporaryDirectory folder;
    writeFile(folder.path() + "clip.mp4", "contents");
    activateFileViewerSelecting(FileURL(folder.path() + "clip.mp4"));
    EXPECT_TRUE(waitUntil([&] { return !opened.urls().isEmpty(); }));
    EXPECT_EQ(opened.urls(), QList<QUrl>{QUrl::fromLocalFile(QString::fromStdString(folder.path()))});
}

} // namespace tarnwell::test
