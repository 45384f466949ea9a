// SPDX-License-Identifier: MIT
// A plugin that Qt loads into any program that is started with QT_QPA_GENERIC_PLUGINS=first-paint. When the
// program's first window has been painted, the plugin writes the time, in nanoseconds of the monotonic clock,
// and the contents of /proc/self/maps into the file named by FIRST_PAINT_FILE, and ends the program.
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
    QGuiApplication::sync(); // the X server has processed all drawing requests
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    {
        std::ofstream report(qEnvironmentVariable("FIRST_PAINT_FILE").toStdString());
        report << std::chrono::nanoseconds(now).count() << '\n' << std::ifstream("/proc/self/maps").rdbuf();
    }
    std::_Exit(EXIT_SUCCESS);
}

/// Calls `reportAndEnd` after the first paint event of the program.
class PaintFilter : public QObject
{
public:
    PaintFilter() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() != QEvent::Paint || m_isPainting)
            return false;
        m_isPainting = true;
        // Runs after the whole window has been painted and flushed.
        QMetaObject::invokeMethod(this, &reportAndEnd, Qt::QueuedConnection);
        return false;
    }

private:
    bool m_isPainting = false;
};

} // namespace

/// The plugin's factory. Qt calls `create` when QGuiApplication is constructed.
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
