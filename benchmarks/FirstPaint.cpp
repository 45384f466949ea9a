// SPDX-License-Identifier: MIT
// A plugin that Qt loads into any program that is started with QT_QPA_GENERIC_PLUGINS=first-paint. Once the
// program's first window is painted it writes into the file named by FIRST_PAINT_FILE when that was, in
// nanoseconds of the monotonic clock, and then what the program has mapped; and it ends the program.
#include <QEvent>
#include <QGenericPlugin>
#include <QGuiApplication>

#include <chrono>
#include <cstdlib>
#include <fstream>

namespace
{

void reportAndEnd()
{
    QGuiApplication::sync(); // the display has all of it
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    {
        std::ofstream report(qEnvironmentVariable("FIRST_PAINT_FILE").toStdString());
        report << std::chrono::nanoseconds(now).count() << '\n' << std::ifstream("/proc/self/maps").rdbuf();
    }
    std::_Exit(EXIT_SUCCESS);
}

class PaintFilter : public QObject
{
public:
    PaintFilter() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() != QEvent::Paint || m_isPainting)
            return false;
        m_isPainting = true;
        // Comes when the window has been painted and handed over.
        QMetaObject::invokeMethod(this, &reportAndEnd, Qt::QueuedConnection);
        return false;
    }

private:
    bool m_isPainting = false;
};

} // namespace

class FirstPaint : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "FirstPaint.json")

public:
    QObject* create(const QString& /*key*/, const QString& /*parameters*/) override
    {
        return new PaintFilter;
    }
};

#include "FirstPaint.moc"
