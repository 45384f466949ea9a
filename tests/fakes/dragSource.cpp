// SPDX-License-Identifier: MIT
// A drag source in another process: a magenta window in the top left corner of the screen, above all windows.
// The arguments are pairs of a MIME type and a text, which a drag carries; "then" separates the contents of
// successive drags. Prints on standard output: "ready" after the window has been painted, "entered" when the
// pointer enters it, "started" at the start of a drag, "action N" when the drop action of the target changes,
// "end N" with the final drop action.
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QWidget>

#include <cstdio>

namespace
{

void say(const char* what)
{
    std::puts(what);
    std::fflush(stdout);
}

void say(const char* what, Qt::DropAction action)
{
    std::printf("%s %d\n", what, static_cast<int>(action));
    std::fflush(stdout);
}

class Source : public QWidget
{
public:
    Source()
        : QWidget(nullptr, Qt::X11BypassWindowManagerHint)
    {
        setGeometry(0, 0, 120, 100);
        setPalette(QPalette(Qt::magenta));
        setAutoFillBackground(true);
    }

protected:
    void enterEvent(QEnterEvent* /*event*/) override { say("entered"); }

    void mouseMoveEvent(QMouseEvent* /*event*/) override
    {
        auto* drag = new QDrag(this);
        auto* contents = new QMimeData;
        const auto then = m_drag.indexOf(QStringLiteral("then"));
        const auto end = then < 0 ? m_drag.size() : then;
        for (qsizetype i = 0; i + 1 < end; i += 2)
            contents->setData(m_drag[i], m_drag[i + 1].toUtf8());
        if (then >= 0)
            m_drag = m_drag.mid(then + 1);
        drag->setMimeData(contents);
        connect(drag, &QDrag::actionChanged, drag, [](Qt::DropAction action) { say("action", action); });
        say("started");
        say("end", drag->exec(Qt::CopyAction));
    }

    void paintEvent(QPaintEvent* event) override
    {
        QWidget::paintEvent(event);
        if (!m_isShown)
            QMetaObject::invokeMethod(
                this, [] { say("ready"); }, Qt::QueuedConnection);
        m_isShown = true;
    }

private:
    bool m_isShown = false;
    QStringList m_drag = QCoreApplication::arguments().mid(1); // contents of the remaining drags
};

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    Source source;
    source.show();
    return QApplication::exec();
}
