// SPDX-License-Identifier: MIT
// Tests drag and drop on Wayland: weston runs nested on the virtual X display, with the real program and a
// drag source as its clients. Positions and results are read from screenshots, because weston chooses where
// windows are.
#include "platform/TemporaryDirectory.h"
#include "tests/desktop/BusService.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QGuiApplication>
#include <QPalette>
#include <QProcess>
#include <QProcessEnvironment>
#include <QScreen>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

const QColor sourceColour(Qt::magenta);
const QString socketName = QStringLiteral("nested");

QImage screen()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

bool isNear(QRgb pixel, const QColor& colour)
{
    constexpr int most = 40; // tolerance for lossy encoding
    return std::abs(qRed(pixel) - colour.red()) < most && std::abs(qGreen(pixel) - colour.green()) < most
        && std::abs(qBlue(pixel) - colour.blue()) < most;
}

/// The bounding box of all pixels of about that colour; invalid if there are none.
QRect placeOf(const QColor& colour)
{
    const QImage image = screen().convertToFormat(QImage::Format_RGB32);
    QRect place;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (isNear(line[x], colour))
                place = place.united(QRect(x, y, 1, 1));
        }
    }
    return place;
}

/// Whether the program's window is on the screen: nothing else has a large area of the window colour.
bool isWindowShown()
{
    constexpr int windowPixels = 100000;
    const QColor colour = QGuiApplication::palette().color(QPalette::Window);
    const QImage image = screen().convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        count += static_cast<int>(
            std::count_if(line, line + image.width(), [&](QRgb pixel) { return isNear(pixel, colour); }));
    }
    return count > windowPixels;
}

void xdotool(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral("xdotool"), arguments);
    EXPECT_TRUE(waitForEnd(process));
}

QStringList moveCommand(QPoint place)
{
    return {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())};
}

/// In small steps, as a hand does; weston ignores motion that comes at once.
void glide(QPoint from, QPoint to)
{
    constexpr int steps = 20;
    QStringList commands;
    for (int step = 0; step <= steps; ++step)
        commands << moveCommand(from + (to - from) * step / steps) << QStringLiteral("sleep")
                 << QStringLiteral("0.005");
    xdotool(commands);
}

} // namespace

class WaylandDropTest : public testing::Test
{
protected:
    void SetUp() override
    {
        makeSampleVideo(video(), {.size = {640, 480}});
        const std::string socket = qgetenv("XDG_RUNTIME_DIR").toStdString() + "/" + socketName.toStdString();
        std::filesystem::remove(socket); // left over by a killed weston
        m_weston.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
        m_weston.setStandardErrorFile(QProcess::nullDevice());
        m_weston.setStandardOutputFile(QProcess::nullDevice());
        m_weston.start(QStringLiteral("weston"),
            {QStringLiteral("--backend=x11-backend.so"), QStringLiteral("--use-pixman"),
                QStringLiteral("--width=1200"), QStringLiteral("--height=900"),
                QStringLiteral("--socket=") + socketName, QStringLiteral("--idle-time=0")});
        ASSERT_TRUE(waitUntil([&] { return exists(socket); })) << "weston does not start";
        start(m_program, "/bin/tarnwell", {});
        // The drag source must come later, or the window would cover it.
        waitFor("the window", isWindowShown);
        waitForSteadyScreen();
    }

    void TearDown() override
    {
        for (QProcess* process : {&m_source, &m_program, &m_weston}) {
            process->kill();
            EXPECT_TRUE(waitForEnd(*process));
        }
    }

    static void start(QProcess& process, const char* path, const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("WAYLAND_DISPLAY"), socketName);
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(TARNWELL_BUILD_FOLDER) + QString::fromLatin1(path), arguments);
    }

    /// Waits until 30 pictures of the screen in a row are the same.
    static void waitForSteadyScreen()
    {
        QImage last;
        int same = 0;
        waitFor("a screen that does not change", [&] {
            const QImage now = screen();
            same = now == last ? same + 1 : 0;
            last = now;
            return same == 30;
        });
    }

    /// Starts the drag source. Its first drag carries the URI of the first path, its second drag that of the
    /// second path, and so on.
    void showSource(const std::vector<std::string>& paths)
    {
        QStringList drags;
        for (const auto& path : paths)
            drags << QStringLiteral("then") << QStringLiteral("text/uri-list")
                  << QString::fromStdString("file://" + path + "\r\n");
        showSource(drags.mid(1));
    }

    /// Starts the drag source with these arguments.
    void showSource(const QStringList& drags)
    {
        start(m_source, "/tests/dragSource", drags);
        waitFor("the drag source", [] { return placeOf(sourceColour).width() > 50; });
        waitForSteadyScreen();
        m_sourcePlace = placeOf(sourceColour);
        // weston reads the pointer's position when the pointer enters its window, and then tracks its motion.
        xdotool(moveCommand(QPoint(1, 1)));
        waitFor("the pointer in the drag source", [this] {
            glide(QPoint(50, 210), m_sourcePlace.center());
            return hasPrinted("entered");
        });
    }

    /// Drags from the source to the program's window and keeps the button pressed. The pointer must be in the
    /// source.
    void drag()
    {
        xdotool({QStringLiteral("mousedown"), QStringLiteral("1")});
        const QPoint start = m_sourcePlace.center();
        waitFor("the start of the drag", [&] {
            glide(start, start + QPoint(10, 0));
            return hasPrinted("started");
        });
        glide(start, target());
        waitForSteadyScreen(); // an accepted drag has highlighted the window by then
    }

    /// Drags back to the source and releases the button there, which does not drop anything.
    void cancelDrag()
    {
        glide(target(), m_sourcePlace.center());
        EXPECT_EQ(drop(), "end 0");
    }

    /// Whether the target has offered a copy action in the current drag.
    bool isCopyOffered() { return hasPrinted("action 1"); }

    /// Releases the button. Returns the source's output: "end 1" for a copy, "end 0" for no action.
    QByteArray drop()
    {
        xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
        waitFor("the end of the drag", [this] { return hasPrinted("end 0\n") || hasPrinted("end 1\n"); });
        const auto place = m_output.indexOf("end ");
        const QByteArray end = m_output.mid(place, 5);
        m_output.remove(0, place + 6);
        return end;
    }

    /// Whether two of the colours in the sample's corners are on the screen.
    static bool showsVideo()
    {
        return placeOf(QColor(Qt::red)).width() > 40 && placeOf(QColor(Qt::yellow)).width() > 40;
    }

    std::string video() const { return m_folder.path() + "clip.mp4"; }
    std::string folder() const { return m_folder.path(); }

private:
    /// Whether the source has printed the text since the end of the last drag.
    bool hasPrinted(const char* text)
    {
        m_output += m_source.readAllStandardOutput();
        return m_output.contains(text);
    }

    /// A position in the program's window, outside of the source.
    QPoint target() const
    {
        const QPoint middle = QGuiApplication::primaryScreen()->geometry().center();
        const bool isCovered = m_sourcePlace.adjusted(-20, -20, 20, 20).contains(middle);
        return isCovered ? middle + QPoint(0, 150) : middle;
    }

    TemporaryDirectory m_folder;
    QProcess m_weston;
    QProcess m_program;
    QProcess m_source;
    QByteArray m_output; // of the source since the end of the last drag
    QRect m_sourcePlace;
};

TEST_F(WaylandDropTest, aDroppedFileIsOpened)
{
    EXPECT_FALSE(showsVideo());
    showSource({video()});
    drag();
    EXPECT_EQ(drop(), "end 1");
    EXPECT_TRUE(waitUntil([] { return showsVideo(); }));
}

TEST_F(WaylandDropTest, aFileOfTheFileTransferPortalIsOpened)
{
    const BusService documents(QStringLiteral("org.freedesktop.portal.Documents"),
        QStringLiteral("/org/freedesktop/portal/documents"), [this](const QDBusMessage& call) {
            return call.createReply(QStringList(QString::fromStdString(video())));
        });
    showSource(QStringList{QStringLiteral("application/vnd.portal.filetransfer"), QStringLiteral("the key")});
    drag();
    EXPECT_TRUE(waitUntil([this] { return isCopyOffered(); }));
    EXPECT_TRUE(documents.calls().isEmpty()) << "the portal answers once, so not before the drop";
    EXPECT_EQ(drop(), "end 1");
    EXPECT_TRUE(waitUntil([] { return showsVideo(); }));
    ASSERT_EQ(documents.calls().size(), 1);
    EXPECT_EQ(documents.calls().first().member(), QStringLiteral("RetrieveFiles"));
    EXPECT_EQ(documents.calls().first().arguments().first().toString(), QStringLiteral("the key"));
}

TEST_F(WaylandDropTest, aFolderIsRefused)
{
    showSource({video(), folder()});
    drag();
    EXPECT_TRUE(waitUntil([this] { return isCopyOffered(); })) << "the window does not receive the drag";
    cancelDrag();
    drag(); // the folder
    EXPECT_FALSE(isCopyOffered());
    EXPECT_EQ(drop(), "end 0");
    waitForSteadyScreen();
    EXPECT_FALSE(showsVideo());
}

} // namespace tarnwell::test
