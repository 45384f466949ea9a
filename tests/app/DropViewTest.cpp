// SPDX-License-Identifier: MIT
#include "app/DragAndDropFileInNSImageView.h"
#include "desktop/InputBlocker.h"
#include "platform/FileURL.h"
#include "platform/NotificationCenter.h"
#include "platform/TemporaryDirectory.h"
#include "tests/support/DragSource.h"
#include "tests/support/EventCounter.h"
#include "tests/support/Files.h"
#include "tests/support/RealInput.h"
#include "tests/support/Screen.h"
#include "tests/support/SilentStop.h"
#include "tests/support/WindowTest.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>

#include <gtest/gtest.h>

#include <any>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

class DropViewTest : public testing::Test
{
protected:
    std::string makeFile(const std::string& name) const
    {
        writeFile(m_folder.path() + name, "no video at all");
        return m_folder.path() + name;
    }

    std::string makeFolder(const std::string& name) const
    {
        std::filesystem::create_directory(m_folder.path() + name);
        return m_folder.path() + name;
    }

    static std::string uriList(const std::vector<std::string>& paths)
    {
        std::string list;
        for (const std::string& path : paths)
            list += FileURL(path).absoluteString() + "\r\n";
        return list;
    }

    static std::unique_ptr<QMimeData> dragOf(const std::vector<std::string>& paths)
    {
        auto data = std::make_unique<QMimeData>();
        data->setData(QStringLiteral("text/uri-list"), QByteArray::fromStdString(uriList(paths)));
        return data;
    }

    Qt::DropAction entering(const std::vector<std::string>& paths)
    {
        return m_view.draggingEntered(*dragOf(paths));
    }
    bool performing(const std::vector<std::string>& paths)
    {
        return m_view.performDragOperation(*dragOf(paths));
    }

    /// Whether the drop of a drag that entered with a file is accepted at once.
    bool isAccepted(const QMimeData& drag)
    {
        const auto file = dragOf({makeFile("first.mp4")});
        const QPoint place(5, 5);
        QDragEnterEvent enter(place, Qt::CopyAction, file.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_view, &enter);
        QDropEvent drop(place, Qt::CopyAction, &drag, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_view, &drop);
        return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
    }

    TemporaryDirectory m_folder;
    DragAndDropFileInNSImageView m_view;
    std::vector<Notification> m_notifications;
    NotificationCenter::Observation m_observation = NotificationCenter::defaultCenter().addObserver(
        "FileAddedByDragAnadDrop", [this](const Notification& each) { m_notifications.push_back(each); });
};

TEST_F(DropViewTest, hasNoFileBeforeTheFirstDrop)
{
    EXPECT_EQ(m_view.filePath(), std::nullopt);
    EXPECT_TRUE(m_view.image().isNull());
}

TEST_F(DropViewTest, offersACopyWhereTheFirstFileExistsAndIsNoFolder)
{
    const std::string file = makeFile("clip.mp4");
    const std::string folder = makeFolder("folder");
    const std::string missing = m_folder.path() + "missing.mp4";
    std::filesystem::create_directory_symlink(folder, m_folder.path() + "link");
    std::filesystem::create_symlink(missing, m_folder.path() + "dangling.mp4");
    const std::tuple<const char*, std::vector<std::string>, Qt::DropAction> cases[] = {
        {"a video", {file}, Qt::CopyAction},
        {"a text", {makeFile("letter.txt")}, Qt::CopyAction},
        {"odd characters", {makeFile("my 100% \"clip\" ä\n")}, Qt::CopyAction},
        {"no UTF-8", {makeFile("bytes \xff\xfe")}, Qt::CopyAction},
        {"a folder", {folder}, Qt::IgnoreAction},
        {"a folder with a slash", {makeFolder("folder.mp4") + "/"}, Qt::IgnoreAction},
        {"a link to a folder", {m_folder.path() + "link"}, Qt::IgnoreAction},
        {"a missing file", {missing}, Qt::IgnoreAction},
        {"a dangling link", {m_folder.path() + "dangling.mp4"}, Qt::IgnoreAction},
        {"a file first", {file, folder, missing}, Qt::CopyAction},
        {"a folder first", {folder, file, file}, Qt::IgnoreAction},
        {"a missing file first", {missing, file, file}, Qt::IgnoreAction},
    };
    for (const auto& [name, paths, action] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(entering(paths), action);
    }
    EXPECT_TRUE(m_notifications.empty()) << "a drag that only enters is announced";
    EXPECT_EQ(m_view.filePath(), std::nullopt);
}

TEST_F(DropViewTest, refusesADragWithoutAFile)
{
    QMimeData text;
    text.setText(QString::fromStdString(makeFile("clip.mp4")));
    EXPECT_EQ(m_view.draggingEntered(text), Qt::IgnoreAction);
    QMimeData empty;
    empty.setData(QStringLiteral("text/uri-list"), "");
    EXPECT_EQ(m_view.draggingEntered(empty), Qt::IgnoreAction);
    QMimeData remote;
    remote.setData(QStringLiteral("text/uri-list"), "http://example.org/clip.mp4\r\n");
    EXPECT_EQ(m_view.draggingEntered(remote), Qt::IgnoreAction);
    for (const QMimeData* drag : {&text, &empty, &remote})
        EXPECT_FALSE(m_view.performDragOperation(*drag));
    EXPECT_EQ(m_view.filePath(), std::nullopt);
    EXPECT_TRUE(m_notifications.empty());
}

TEST_F(DropViewTest, announcesTheFirstFileOnce)
{
    const std::string path = makeFile("clip.mp4");
    EXPECT_TRUE(performing({path, makeFile("second.mp4"), makeFile("third.mp4")}));
    ASSERT_EQ(m_notifications.size(), 1u);
    const Notification& notification = m_notifications.front();
    EXPECT_EQ(notification.name, "FileAddedByDragAnadDrop");
    EXPECT_EQ(notification.sender, nullptr);
    ASSERT_EQ(notification.userInfo.size(), 1u);
    EXPECT_EQ(std::any_cast<FileURL>(notification.userInfo.at("key")), FileURL(path));
    EXPECT_EQ(m_view.filePath(), path);
}

TEST_F(DropViewTest, hasTheFileBeforeItIsAnnouncedOnTheSameThread)
{
    const std::string path = makeFile("clip.mp4");
    std::optional<std::string> announced;
    std::thread::id thread;
    const auto observation
        = NotificationCenter::defaultCenter().addObserver(fileDroppedNotification, [&](const Notification&) {
              announced = m_view.filePath();
              thread = std::this_thread::get_id();
          });
    EXPECT_TRUE(performing({path}));
    EXPECT_EQ(announced, path) << "it is announced before the drop is answered";
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(DropViewTest, storesTheFileWithoutAnObserver)
{
    m_observation.reset();
    const std::string path = makeFile("clip.mp4");
    EXPECT_TRUE(performing({path}));
    EXPECT_EQ(m_view.filePath(), path);
    EXPECT_TRUE(m_notifications.empty());
}

TEST_F(DropViewTest, everyDropReplacesTheFileWithItsBytesAndWithoutATestForExistence)
{
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    m_view.setImage(picture);
    const std::string paths[] = {makeFile("first.mp4"), m_folder.path() + "missing.mp4",
        makeFile("a b%20\"#?\n\xc3\xa4 u\xcc\x88 \xff.mp4")};
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        EXPECT_TRUE(performing({path}));
        EXPECT_EQ(m_view.filePath(), path);
        EXPECT_EQ(std::any_cast<FileURL>(m_notifications.back().userInfo.at("key")).path(), path);
    }
    QMimeData text;
    text.setText(QStringLiteral("text"));
    EXPECT_FALSE(m_view.performDragOperation(text));
    EXPECT_EQ(m_view.filePath(), paths[2]);
    EXPECT_EQ(m_notifications.size(), std::size(paths));
    EXPECT_EQ(m_view.image(), picture);
}

TEST_F(DropViewTest, theSourceOfADropIsAnsweredBeforeTheFileIsAnnounced)
{
    const std::string path = makeFile("clip.mp4");
    auto drag = dragOf({path});
    EXPECT_TRUE(isAccepted(*drag));
    drag.reset();
    EXPECT_TRUE(m_notifications.empty());
    EXPECT_TRUE(InputBlocker::isActive());
    QCoreApplication::sendPostedEvents(&m_view);
    ASSERT_EQ(m_notifications.size(), 1U);
    EXPECT_EQ(m_view.filePath(), path);
    EXPECT_FALSE(InputBlocker::isActive());
}

TEST_F(DropViewTest, aDropWithoutAFileIsRefusedAtOnce)
{
    QMimeData drag;
    drag.setText(QStringLiteral("words"));
    EXPECT_FALSE(isAccepted(drag));
    EXPECT_FALSE(InputBlocker::isActive());
}

/// Drags from the window of another process, by the mouse.
class RealDropTest : public DropViewTest
{
protected:
    RealDropTest()
    {
        m_view.resize(1000, 800);
        m_view.show();
        waitForKeyboard(m_view);
    }

    QPoint target() { return screenPosition(m_view); }

    /// The colour on the screen in the place of the highlight's frame.
    QColor edge() { return colourOnScreen(screenPosition(m_view, QPoint(m_view.width() / 2, 24))); }

    bool looksHighlighted()
    {
        const QColor wanted = m_view.palette().color(QPalette::Highlight);
        return waitUntil([&] { return edge() == wanted; });
    }
    bool looksUsual(const QColor& usual)
    {
        return waitUntil([&] { return edge() == usual; });
    }
};

TEST_F(RealDropTest, aHoveringFileIsHighlightedAndDropped)
{
    paintEveryWindow();
    const QColor usual = edge();
    const std::string path = makeFile("my clip 100% \xc3\xa4.mp4");
    DragSource source(uriList({path, makeFolder("folder"), makeFile("clip.mp4")}));
    source.dragTo(target());
    source.waitUntilAccepted();
    EXPECT_TRUE(looksHighlighted());
    source.moveTo(DragSource::place.center());
    EXPECT_TRUE(looksUsual(usual));
    source.moveTo(target());
    EXPECT_TRUE(looksHighlighted());
    EXPECT_TRUE(m_notifications.empty());
    EXPECT_TRUE(source.drop());
    EXPECT_TRUE(looksUsual(usual));
    ASSERT_TRUE(waitUntil([this] { return m_notifications.size() == 1; }));
    EXPECT_EQ(m_view.filePath(), path);
}

TEST_F(RealDropTest, aFolderAndAMissingFileAreRefusedWithoutAHighlight)
{
    for (const std::string& path : {makeFolder("folder"), m_folder.path() + "missing.mp4"}) {
        SCOPED_TRACE(path);
        const EventCounter entries(m_view, QEvent::DragEnter);
        DragSource source(uriList({path, makeFile("clip.mp4")}));
        source.dragTo(target());
        EXPECT_TRUE(waitUntil([&] { return entries.count() > 0; }));
        EXPECT_FALSE(m_view.isHighlighted());
        EXPECT_FALSE(source.drop());
    }
    EXPECT_TRUE(m_notifications.empty());
    EXPECT_EQ(m_view.filePath(), std::nullopt);
}

TEST_F(RealDropTest, aDragThatLeavesTheWindowIsNotAnnounced)
{
    const EventCounter departures(m_view, QEvent::DragLeave);
    DragSource source(uriList({makeFile("clip.mp4")}));
    source.dragTo(target());
    source.waitUntilAccepted();
    source.moveTo(DragSource::place.center());
    EXPECT_TRUE(waitUntil([&] { return departures.count() > 0; }));
    EXPECT_FALSE(source.drop());
    EXPECT_TRUE(m_notifications.empty());
}

TEST_F(RealDropTest, aDragWhoseSourceIsKilledLeavesNoHighlightAndNextDropWorks)
{
    paintEveryWindow();
    const QColor usual = edge();
    const std::string path = makeFile("clip.mp4");
    {
        DragSource source(uriList({path}));
        source.dragTo(target());
        source.waitUntilAccepted();
        EXPECT_TRUE(looksHighlighted());
        source.die();
    }
    realMove(target() + QPoint(30, 30));
    EXPECT_TRUE(looksUsual(usual));
    EXPECT_TRUE(m_notifications.empty());
    DragSource another(uriList({path}));
    another.dragTo(target());
    another.waitUntilAccepted();
    EXPECT_TRUE(another.drop());
    ASSERT_TRUE(waitUntil([this] { return m_notifications.size() == 1; }));
    EXPECT_EQ(m_view.filePath(), path);
}

class DropViewDeathTest : public testing::Test
{
};

TEST_F(DropViewDeathTest, cannotBeMadeFromAFrame)
{
    EXPECT_SILENT_STOP(DragAndDropFileInNSImageView(QRect(0, 0, 10, 10)));
}

} // namespace tarnwell::test
