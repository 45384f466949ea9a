// SPDX-License-Identifier: MIT
// The real program on a Wayland desktop, nested in the virtual one, and another program there to drag from.
// What happens is read from the screen, on which weston puts windows where it likes.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QGuiApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QScreen>
#include <QTest>

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
    constexpr int most = 40; // what a lossy encoding changes
    return std::abs(qRed(pixel) - colour.red()) < most && std::abs(qGreen(pixel) - colour.green()) < most
        && std::abs(qBlue(pixel) - colour.blue()) < most;
}

/// The box around all pixels of about that colour; empty where there is none.
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

void point(const QStringList& what)
{
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"), what);
    EXPECT_TRUE(waitForEnd(xdotool));
}

void moveTo(QPoint place)
{
    point({QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())});
    QTest::qWait(30);
}

void glide(QPoint from, QPoint to)
{
    constexpr int steps = 20;
    for (int step = 0; step <= steps; ++step)
        moveTo(from + (to - from) * step / steps);
}

} // namespace

class WaylandDropTest : public testing::Test
{
protected:
    void SetUp() override
    {
        makeSampleVideo(video(), {.size = {640, 480}});
        const std::string socket = qgetenv("XDG_RUNTIME_DIR").toStdString() + "/" + socketName.toStdString();
        std::filesystem::remove(socket); // an earlier weston was killed and has left it
        m_weston.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
        m_weston.setStandardErrorFile(QProcess::nullDevice());
        m_weston.setStandardOutputFile(QProcess::nullDevice());
        m_weston.start(QStringLiteral("weston"),
            {QStringLiteral("--backend=x11-backend.so"), QStringLiteral("--width=1200"),
                QStringLiteral("--height=900"), QStringLiteral("--socket=") + socketName,
                QStringLiteral("--idle-time=0")});
        ASSERT_TRUE(waitUntil([&] { return exists(socket); })) << "weston does not start";
        start(m_program, "/bin/tarnwell", {});
        // What invites a drop is the widest plain area of the window: the frame around it is looked for by
        // the drag.
        ASSERT_TRUE(waitUntil([this] { return isSteady(); }));
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

    /// The same for half a second, and something is there.
    static bool isSteady()
    {
        const QImage before = screen();
        QTest::qWait(500);
        return before == screen() && placeOf(QColor(Qt::black)).isValid();
    }

    /// Shows the other program, from which those paths can be dragged, one after the other.
    void showSource(const std::vector<std::string>& paths)
    {
        QStringList drags;
        for (const auto& path : paths)
            drags << QStringLiteral("then") << QStringLiteral("text/uri-list")
                  << QString::fromStdString("file://" + path + "\r\n");
        start(m_source, "/tests/dragSource", drags.mid(1));
        ASSERT_TRUE(waitUntil([] { return placeOf(sourceColour).width() > 50; })) << "no source to drag from";
        QTest::qWait(300);
        m_sourcePlace = placeOf(sourceColour);
        // weston learns where the pointer is when it enters weston's window, and follows it from there.
        moveTo(QPoint(1, 1));
        QTest::qWait(300);
        glide(QPoint(50, 210), m_sourcePlace.center());
        QTest::qWait(300);
    }

    /// Drags from the other program to the middle of the nested desktop; the button stays pressed. The
    /// pointer must be in the source.
    void drag()
    {
        point({QStringLiteral("mousedown"), QStringLiteral("1")});
        QTest::qWait(200);
        glide(m_sourcePlace.center(), target());
        QTest::qWait(500);
    }

    /// Gives up the drag: nothing is done where nothing is taken.
    void giveUp()
    {
        glide(target(), m_sourcePlace.center());
        EXPECT_EQ(drop(), "end 0");
        QTest::qWait(300);
    }

    /// Whether the source has been told, in this drag, that the target would take a copy.
    bool isCopyOffered()
    {
        m_said += m_source.readAllStandardOutput();
        return m_said.contains("action 1");
    }

    /// What the source says was done in the end: "end 1" for a copy, "end 0" for nothing.
    QByteArray drop()
    {
        point({QStringLiteral("mouseup"), QStringLiteral("1")});
        waitFor("the end of the drag", [&] {
            m_said += m_source.readAllStandardOutput();
            return m_said.contains("end ");
        });
        const QByteArray end = m_said.mid(m_said.indexOf("end ")).trimmed();
        m_said.clear();
        return end;
    }

    /// The sample's corners are plain red, green, blue and yellow.
    static bool showsVideo()
    {
        return placeOf(QColor(Qt::red)).width() > 40 && placeOf(QColor(Qt::yellow)).width() > 40;
    }

    std::string video() const { return m_folder.path() + "clip.mp4"; }
    std::string folder() const { return m_folder.path(); }

private:
    /// A place in the window of the program.
    QPoint target() const
    {
        const QPoint middle = QGuiApplication::primaryScreen()->geometry().center();
        const bool isInTheWay = m_sourcePlace.adjusted(-20, -20, 20, 20).contains(middle);
        return isInTheWay ? middle + QPoint(0, 150) : middle;
    }

    TemporaryDirectory m_folder;
    QProcess m_weston;
    QProcess m_program;
    QProcess m_source;
    QByteArray m_said; // by the source, about its present drag
    QRect m_sourcePlace;
};

TEST_F(WaylandDropTest, aFileIsTakenAndShown)
{
    EXPECT_FALSE(showsVideo());
    showSource({video()});
    drag();
    EXPECT_EQ(drop(), "end 1");
    EXPECT_TRUE(waitUntil([] { return showsVideo(); }));
}

TEST_F(WaylandDropTest, aFolderIsNot)
{
    showSource({video(), folder()});
    drag();
    EXPECT_TRUE(waitUntil([this] { return isCopyOffered(); })) << "the drag does not reach the window";
    giveUp();
    drag(); // of the folder, on the same way
    EXPECT_FALSE(isCopyOffered());
    EXPECT_EQ(drop(), "end 0");
    QTest::qWait(300);
    EXPECT_FALSE(showsVideo());
}

} // namespace tarnwell::test
