// SPDX-License-Identifier: MIT
// The window as in the sandbox, with a fake file transfer portal on the session bus. The linker option --wrap
// (see CMakeLists.txt) redirects Sandbox::isInside to this file.
#include "app/DragAndDropFileInNSImageView.h"
#include "desktop/InputBlocker.h"
#include "platform/FileURL.h"
#include "tests/desktop/BusService.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QLineEdit>
#include <QMimeData>
#include <QVariantMap>

#include <filesystem>
#include <future>

namespace tarnwell::test
{

bool wrappedIsInside() __asm__("__wrap__ZN8tarnwell7Sandbox8isInsideEv");

namespace
{

bool isInside = true;

const QString transferType = QStringLiteral("application/vnd.portal.filetransfer");
constexpr const char* sameFileText = "Input file name is same as the output file name!";

BusService::Answer passing(const QStringList& paths)
{
    return [paths](const QDBusMessage& call) { return call.createReply(paths); };
}

} // namespace

bool wrappedIsInside()
{
    return isInside;
}

class SandboxedWindowTest : public FakeToolsTest
{
protected:
    ~SandboxedWindowTest() override { isInside = true; }

    QString file(const std::string& name = "clip.mp4") const
    {
        writeFile(folder() + name, "bytes");
        return QString::fromStdString(folder() + name);
    }

    /// As a file manager offers files: a key, and a list of URIs that do not exist in the sandbox.
    static std::unique_ptr<QMimeData> drag(const QString& type = transferType, const QByteArray& key = "key")
    {
        auto data = std::make_unique<QMimeData>();
        data->setData(type, key);
        data->setData(QStringLiteral("text/uri-list"), "file:///outside/clip.mp4\r\n");
        return data;
    }

    static std::unique_ptr<BusService> portal(BusService::Answer answer)
    {
        return std::make_unique<BusService>(QStringLiteral("org.freedesktop.portal.Documents"),
            QStringLiteral("/org/freedesktop/portal/documents"), std::move(answer));
    }

    DragAndDropFileInNSImageView& view() { return find<DragAndDropFileInNSImageView>("posterFrameIMGV"); }

    void expectFailedDrop()
    {
        EXPECT_FALSE(view().performDragOperation(*drag()));
        AlertDialog* alert = shownAlert();
        EXPECT_TRUE(alert->informativeText().contains(QStringLiteral("did not pass on the dropped file")));
        answer(alert, "OK");
        EXPECT_EQ(view().filePath(), std::nullopt);
        EXPECT_FALSE(exists(folder() + "probed"));
    }
};

TEST_F(SandboxedWindowTest, aDropRetrievesItsFilesOnceAndOpensTheFirst)
{
    start();
    for (const QString& type : {transferType, QStringLiteral("application/vnd.portal.files")}) {
        SCOPED_TRACE(type.toStdString());
        const auto documents = portal(passing({file(), file("second.mp4")}));
        EXPECT_EQ(view().draggingEntered(*drag(type)), Qt::CopyAction);
        EXPECT_TRUE(documents->calls().isEmpty()) << "the portal answers once, so not before the drop";
        EXPECT_TRUE(drop(*drag(type, QByteArray("key\0", 4))));
        EXPECT_EQ(view().filePath(), folder() + "clip.mp4");
        EXPECT_EQ(shownPicture(), still());
        ASSERT_EQ(documents->calls().size(), 1);
        const QDBusMessage call = documents->calls().first();
        EXPECT_EQ(call.interface(), QStringLiteral("org.freedesktop.portal.FileTransfer"));
        EXPECT_EQ(call.member(), QStringLiteral("RetrieveFiles"));
        EXPECT_EQ(call.signature(), QStringLiteral("sa{sv}"));
        EXPECT_EQ(call.arguments().first().toString(), QStringLiteral("key"));
    }
}

TEST_F(SandboxedWindowTest, aDroppedFolderDoesNothing)
{
    start();
    const auto documents = portal(passing({QString::fromStdString(folder()), file()}));
    EXPECT_FALSE(view().performDragOperation(*drag()));
    EXPECT_EQ(documents->calls().size(), 1);
    EXPECT_EQ(view().filePath(), std::nullopt);
    EXPECT_FALSE(isAlertShown());
}

TEST_F(SandboxedWindowTest, aDropThatThePortalDoesNotPassOnIsReported)
{
    start();
    expectFailedDrop(); // no portal
    for (const auto& reply :
        {BusService::Answer(BusService::refusal), BusService::Answer(BusService::emptyReply), passing({})}) {
        const auto documents = portal(reply);
        expectFailedDrop();
        EXPECT_EQ(documents->calls().size(), 1);
    }
}

TEST_F(SandboxedWindowTest, inputIsDroppedUntilALatePortalAnswers)
{
    start();
    const QStringList files(file());
    std::promise<void> release;
    const auto documents = portal([&release, files](const QDBusMessage& call) {
        release.get_future().wait();
        return call.createReply(files);
    });
    bool wasBlocked = false;
    QTimer::singleShot(0, &window(), [&] {
        wasBlocked = InputBlocker::isActive();
        release.set_value();
    });
    EXPECT_TRUE(view().performDragOperation(*drag()));
    EXPECT_TRUE(wasBlocked);
    EXPECT_EQ(view().filePath(), folder() + "clip.mp4");
}

TEST_F(SandboxedWindowTest, outsideTheListOfFilesIsUsed)
{
    isInside = false;
    start();
    const auto documents = portal(passing({file()}));
    auto both = drag();
    both->setData(QStringLiteral("text/uri-list"),
        QByteArray::fromStdString(FileURL(folder() + "clip.mp4").absoluteString()));
    EXPECT_TRUE(drop(*both));
    EXPECT_TRUE(documents->calls().isEmpty());
    QMimeData keyAlone;
    keyAlone.setData(transferType, "key");
    EXPECT_TRUE(drop(keyAlone));
    EXPECT_EQ(documents->calls().size(), 1);
}

TEST_F(SandboxedWindowTest, theProposedNameHasItsExtension)
{
    const std::pair<bool, const char*> cases[] = {{true, "Rotated.mp4"}, {false, "Rotated"}};
    start();
    openVideo();
    action("rotateRightBTN").trigger();
    for (const auto& [inside, name] : cases) {
        isInside = inside;
        type(QKeySequence(QStringLiteral("Ctrl+S")));
        PathPanel* panel = shownPanel();
        EXPECT_EQ(panel->nameField()->text().toStdString(), name);
        QTest::keyClick(panel, Qt::Key_Escape);
        waitForKeyboard(window());
    }
}

TEST_F(SandboxedWindowTest, anotherGrantOfTheInputIsRefusedAsOutput)
{
    start();
    openVideo();
    std::filesystem::create_hard_link(folder() + "clip.mp4", folder() + "grant.mp4");
    saveByPanel(folder() + "grant.mp4");
    answerReplaceQuestion("&Yes");
    ASSERT_TRUE(waitUntil(
        [this] { return isAlertShown() && shownAlert()->text() == QString::fromLatin1(sameFileText); }));
    answer(shownAlert(), "OK");
    EXPECT_EQ(contentsOf(folder() + "clip.mp4"), "bytes");
}

TEST_F(SandboxedWindowTest, outsideAnotherLinkToTheInputIsPassedOn)
{
    isInside = false;
    start();
    openVideo();
    std::filesystem::create_hard_link(folder() + "clip.mp4", folder() + "grant.mp4");
    saveByPanel(folder() + "grant.mp4");
    answerReplaceQuestion("&Yes");
    ASSERT_TRUE(waitUntil([this] {
        return isAlertShown() && shownAlert()->text() == QStringLiteral("Fix Flag mode Available!");
    }));
}

} // namespace tarnwell::test
